// Tokens that let a form act once, and only when this server's own page sent it.
#pragma once

#include <string>
#include <string_view>

class LWebletForm;

// The field that carries a form's token.
inline constexpr std::string_view kTokenField = "token";

// A token of the request's session; empty without a session. Nothing is stored per token, so any
// number of forms may be open.
std::string IssueOneTimeToken(LWebletForm& form);

enum class LTokenAnswer {
    kTaken,
    kSpent,    // it was taken before
    kUnknown,  // never issued to this session, or so old that nobody can tell
};
// Of several requests with one token, in any number of threads, exactly one gets kTaken. The
// session stays locked until the request has been answered, so a second one waits for the first's
// outcome.
LTokenAnswer TakeOneTimeToken(LWebletForm& form, std::string_view token);
// Makes a token that this request took usable again: what it stood for was refused.
void GiveBackOneTimeToken(LWebletForm& form, std::string_view token);
