// tests/egtb/material_test.cpp - names of endings and the order in which they are made.
#include "egtb/material.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace vatro::egtb {
namespace {

TEST(Material, NamesHaveOneForm) {
    const std::pair<const char*, const char*> cases[] = {
        {"KRPKR", "KRPKR"},                      // as it is
        {"KRKPR", "KRPKR"},                      // sides and men in another order
        {"KRKQ", "KQKR"},   {"KBKPP", "KPPKB"},  // more men come first, however weak
        {"KKP", "KPK"},
    };
    for (const auto& [given, name] : cases) {
        ASSERT_TRUE(parseMaterial(given)) << given;
        EXPECT_EQ(parseMaterial(given)->name(), name);
    }
    for (const char* bad :
         {"", "KK", "KQ", "QKK", "KQQQQ", "KQKQRR", "KQKK", "K.K", "KxK", "kqk"}) {
        EXPECT_FALSE(parseMaterial(bad)) << bad;
    }
}

TEST(Material, EveryEndingComesAfterThoseItNeeds) {
    const std::pair<int, std::size_t> counts[] = {{3, 5}, {4, 35}, {5, 145}};
    for (const auto& [pieces, count] : counts) {
        const std::vector<Material> list = allMaterials(pieces);
        EXPECT_EQ(list.size(), count);
        for (auto ending = list.begin(); ending != list.end(); ++ending) {
            EXPECT_TRUE(ending->isCanonical());
            EXPECT_EQ(std::count(list.begin(), list.end(), *ending), 1);
            for (const Material& next : successors(*ending)) {
                EXPECT_NE(std::find(list.begin(), ending, next), ending)
                    << ending->name() << " needs " << next.name();
            }
        }
    }
}

}  // namespace
}  // namespace vatro::egtb
