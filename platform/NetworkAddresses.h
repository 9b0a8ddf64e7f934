// This machine's own addresses in the networks it is part of.
#pragma once

#include <string>
#include <vector>

// Whether any network is up; the machine's own loop counts.
bool IsNetworkUp();

enum class LNetworkReach { kLocal, kPublic };
// The addresses by which others reach this machine, IPv4 first; those meant for local networks
// only (RFC 1918, RFC 4193) or those of the internet. The loop and link-local ones are left out.
std::vector<std::string> OwnNetworkAddresses(LNetworkReach reach);
