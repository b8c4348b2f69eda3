#include "Values.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

TEST(ValuesTest, AreTheSameBitsOnEveryMachine) {
    std::ifstream expected(KIV_VALUES, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(expected), {}), Kiv::table_of_values());
}
