// Transfers in the browser: the list, one transfer, its note, cancelling it.
#pragma once

#include "inventory/Transfers.h"
#include "web/accounts/BusinessPages.h"
#include "web/framework/LHtmlList.h"

class LWebTransferListPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Transfers"); }
    void PrintBody() override;

private:
    void PrintFilters(std::string_view state);
};

// What moves, from where to where, and how far it has come. "id" names the transfer.
class LWebTransferViewDialog : public LWebDialogEA {
public:
    explicit LWebTransferViewDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    void PrintAboveForm() override;

private:
    void PrintLink(std::string_view page, std::string_view caption, std::string_view style);
    void AddStep(std::string_view caption, LTransferState state);

    LTransfer transfer_;
};

// What is to be said with a transfer.
class LWebTransferNoteDialog : public LWebDialogEA {
public:
    explicit LWebTransferNoteDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    LTransfer transfer_;
};

void WLTransferCancel(LWebletForm& form);

// The lines of a transfer as a table; of a requested one also what lies at its source.
class LTransferLinesTable {
public:
    LTransferLinesTable(const LProfile& profile, const LTransfer& transfer);
    LHtmlList& Table() { return table_; }

private:
    LHtmlList table_;
};
