#include "web/framework/LPageWriter.h"

#include "web/server/LWebletForm.h"

void LPageWriter::Flush() {
    if (buffer_.empty()) return;
    form_.SetAnswered();
    WebletSend(form_, buffer_);  // a client that has gone needs no more of the page
    buffer_.clear();
}
