// Orders that repeat: their list, the schedule of one, and running them.
#pragma once

#include "orders/LPOrder.h"
#include "orders/RecurringSchedule.h"
#include "web/accounts/BusinessPages.h"

// "id" names the template whose schedule is edited, or another order, of which OK makes a new
// template. Without it the page lists all templates.
class LWebOrderRecurringDialog : public LWebDialogEA {
public:
    explicit LWebOrderRecurringDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void PrintAboveForm() override;
    void Generate() override;
    bool CmOk() override;

private:
    bool IsList() const { return Form().Parameter("id").empty(); }
    void GenerateSchedule();
    void GenerateList();
    void AddRow(LHtmlList& table, const LPOrder& recurring);
    bool ReadSchedule(LRecurringScheduleInput& input);

    LPOrder order_;
    bool isTemplate_ = false;
};

// Runs the template "id" now, or without it all that are due; asks first, then tells what was
// placed and what went wrong.
void WLProcessRunRecurringOrder(LWebletForm& form);
