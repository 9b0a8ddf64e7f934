// What the sample shop sells, and to whom.
#pragma once

#include <span>

enum LSampleSupplier { kFixings, kTools, kPaint, kElectrical, kPlumbing, kTimber };

struct LSampleItem {
    const char* code;
    const char* description;
    const char* category;
    const char* subCategory;
    const char* measure;
    int costCents;
    int priceCents;
    LSampleSupplier supplier;
    int idealQuantity;  // on the shop floor; three times as much in the stockroom for small things
    int soldPerMonth;   // about
};
std::span<const LSampleItem> SampleItems();

struct LSampleParty {
    const char* name;
    const char* contact;
    const char* contactFirst;
    const char* address;
    const char* city;
    const char* zipCode;
    const char* phone;
    const char* email;
};
std::span<const LSampleParty> SampleSuppliers();  // by LSampleSupplier
std::span<const LSampleParty> SampleCustomers();  // the first one is the counter
