// The names that a pull-down list offers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class LProfile;

// The names of all records of a list ("Locations"), each once, in alphabetical order.
std::vector<std::string> SortedNames(const LProfile& profile, std::string_view listName);
// The same with the filters' word for no filter in front.
std::vector<std::string> WithAll(std::vector<std::string> names);
