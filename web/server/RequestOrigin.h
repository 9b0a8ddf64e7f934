// Which site made the browser send a request.
#pragma once

class LHashTable;

// Whether the browser marks the request as made by a page of another site: Sec-Fetch-Site says so,
// or, from browsers that do not send it, Origin names another host than Host does. What is no
// browser sends neither and is never from another site. Header names are in lower case.
bool IsRequestFromOtherSite(const LHashTable& headers);
