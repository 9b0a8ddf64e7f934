// The choices of those reports that have some. OK shows the report, "Save as CSV" saves it.
#pragma once

#include "web/accounts/BusinessPages.h"
#include "web/pages/ReportChoices.h"

class LReportDialog : public LWebDialogEA {
protected:
    LReportDialog(LWebletForm& form, std::string title);

    bool CmOk() override;
    bool MayChange() override { return true; }  // a report changes nothing: viewers may draw it

    // What was chosen. False when it cannot be; the reason has been shown then.
    virtual bool ReadChoices(LReportChoices& choices) = 0;
    // A row with a list of the records of `listName`, "All" before them; values are keys.
    void AddRecordList(int control, std::string_view caption, std::string_view listName,
                       const std::string& chosenKey, std::string_view forAll = "All");

private:
    bool Show(std::string_view page);
};

// By location and category, or for one of them.
class LWebReportLocCatDialog : public LReportDialog {
public:
    explicit LWebReportLocCatDialog(LWebletForm& form);

protected:
    void Generate() override;
    bool ReadChoices(LReportChoices& choices) override;
};

class LWebReportCatImgDialog : public LReportDialog {
public:
    explicit LWebReportCatImgDialog(LWebletForm& form);

protected:
    void Generate() override;
    bool ReadChoices(LReportChoices& choices) override;
};

class LWebReportSupplierDialog : public LReportDialog {
public:
    explicit LWebReportSupplierDialog(LWebletForm& form);

protected:
    void Generate() override;
    bool ReadChoices(LReportChoices& choices) override;
};

class LWebReportSalesDialog : public LReportDialog {
public:
    explicit LWebReportSalesDialog(LWebletForm& form);

protected:
    void Generate() override;
    bool ReadChoices(LReportChoices& choices) override;
};
