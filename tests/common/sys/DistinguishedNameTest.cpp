#include <gtest/gtest.h>

#include <string>

#include "common/sys/Domain.h"

namespace {

TEST(DistinguishedName, IsBuiltOfADomainAndAUnit) {
    struct BuildCase {
        std::string domain;
        std::string unit;
        std::string name;
    };
    const BuildCase cases[] = {
        {"corp.example", "East/Sales", "OU=Sales,OU=East,DC=corp,DC=example"},
        {"DC=corp,DC=example", "East", "OU=East,DC=corp,DC=example"},
        {"corp.example", "", "DC=corp,DC=example"},
        {"", "East/Sales", "OU=Sales,OU=East"},
        {"", "", ""},
        {"corp.example", "OU=Sales,OU=East", "OU=Sales,OU=East,DC=corp,DC=example"},
        {"corp.example", "OU=Sales,DC=other", "OU=Sales,DC=other"},
        {"", "OU=Sales", "OU=Sales"},
        {"corp.example", "DC=x", "OU=DC=x,DC=corp,DC=example"},  // a path of one odd part
        {"corp..example.", "/East//", "OU=,OU=,OU=East,OU=,DC=corp,DC=,DC=example,DC="},
        {"corp.example", "ou=sales", "OU=ou=sales,DC=corp,DC=example"},  // with case
        {"my.DC=x.y", "", "my.DC=x.y"},
    };
    for (const BuildCase& test : cases) {
        std::string name = "what was there before";
        sys::Domain::BuildDn(test.domain, test.unit, name);
        EXPECT_EQ(name, test.name) << test.domain << " | " << test.unit;
    }
}

TEST(DistinguishedName, YieldsItsUnits) {
    struct ExtractCase {
        std::string name;
        std::string path;
        std::string fragment;
    };
    const ExtractCase cases[] = {
        {"CN=PC1,OU=Sales,OU=East,DC=corp,DC=example", "East/Sales", "OU=Sales,OU=East"},
        {"CN=PC1,CN=Computers,DC=corp", "", ""},
        {"", "", ""},
        {"OU=,OU=East", "East", "OU=East"},  // an empty unit counts only above another one
        {"OU=East,OU=", "/East", "OU=East,OU="},
        {"CN=COU=x,DC=y", "x", "OU=x"},
        {"OU=aOU=b,OU=c", "c/aOU=b", "c/aOU=b"},  // taken for a fragment
    };
    for (const ExtractCase& test : cases) {
        std::string out = "what was there before";
        sys::Domain::ExtractOuPath(test.name, out, false);
        EXPECT_EQ(out, test.path) << test.name;
        sys::Domain::ExtractOuPath(test.name, out, true);
        EXPECT_EQ(out, test.fragment) << test.name;
    }
}

TEST(DistinguishedName, MayBeBuiltInPlace) {
    std::string text = "East/Sales";
    sys::Domain::BuildDn({}, text, text);
    EXPECT_EQ(text, "OU=Sales,OU=East");
    sys::Domain::ExtractOuPath(text, text, false);
    EXPECT_EQ(text, "East/Sales");
}

}  // namespace
