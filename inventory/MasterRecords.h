// Categories, locations, suppliers, customers and name lists: looked up by name, checked when
// saved, kept while something needs them. Each subject has its own header; this one has them all.
#pragma once

#include "inventory/Categories.h"
#include "inventory/Locations.h"
#include "inventory/NameLists.h"
#include "inventory/Parties.h"
