// Making a transfer, and sending or receiving one.
#pragma once

#include "inventory/Transfers.h"
#include "web/accounts/BusinessPages.h"

// Stock that is to move: asked for only, sent, or moved at once. "id" names an item to begin with
// and "loc" the location that it comes from.
class LAppWebItemTransferDialog : public LWebDialogEA {
public:
    explicit LAppWebItemTransferDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    LTransferInput ReadInput();
};

// The pages "transfersend" and "transferreceive": what moves, when, and the deed. "id" names the
// transfer.
class LWebTransferSendReceiveDialog : public LWebDialogEA {
public:
    explicit LWebTransferSendReceiveDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    bool isSend_ = false;
    LTransfer transfer_;
};

// The signed-in person and today.
LTransferStep WLTransferStep(LWebletForm& form);
