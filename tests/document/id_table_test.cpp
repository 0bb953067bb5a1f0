#include "id_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <random>
#include <thread>

namespace
{

TEST(id_table, agrees_with_a_map_whatever_is_put_in_and_asked_for)
{
    std::mt19937 random(1);
    for (int round = 0; round < 50; ++round) {
        ID_TABLE table;
        std::deque<std::string> ids;
        std::map<std::string, std::size_t> numbers;
        for (int step = 0; step < 500; ++step) {
            const std::string id = "Raw_File_" + std::to_string(random() % 300);
            if (random() % 50 == 0) {
                table.reserve(random() % 600);
            }
            if (random() % 2 == 0) {
                ids.push_back(id);
                EXPECT_EQ(table.insert(ids.back()), numbers.emplace(id, numbers.size()).second);
            }
            const auto known = numbers.find(id);
            EXPECT_EQ(table.find(id),
                      known == numbers.end() ? std::nullopt : std::optional<std::size_t>(known->second));
        }
    }
}

TEST(id_table, finds_ids_in_any_order_and_none_that_is_not_there)
{
    std::vector<std::string> ids;
    for (int number = 0; number < 1000; ++number) {
        ids.push_back("id" + std::to_string(number));
    }
    ID_TABLE table;
    EXPECT_EQ(table.find(""), std::nullopt);
    for (const std::string& id : ids) {
        EXPECT_TRUE(table.insert(id));
        EXPECT_FALSE(table.insert(id));
    }
    std::vector<std::size_t> order(ids.size());
    for (std::size_t number = 0; number < order.size(); ++number) {
        order[number] = number;
    }
    std::mt19937 random(2);
    const auto ask = [&] {
        for (const std::size_t number : order) {
            EXPECT_EQ(table.find(ids[number]), number);
        }
    };
    ask();
    ask();
    std::reverse(order.begin(), order.end());
    ask();
    std::shuffle(order.begin(), order.end(), random);
    ask();
    // Behind the last one there is nothing to look at.
    EXPECT_EQ(table.find(ids.back()), ids.size() - 1);
    EXPECT_EQ(table.find("id1000"), std::nullopt);
    EXPECT_EQ(table.find(""), std::nullopt);
}

TEST(id_table, may_be_asked_by_several_threads)
{
    std::vector<std::string> ids;
    for (int number = 0; number < 2000; ++number) {
        ids.push_back("id" + std::to_string(number));
    }
    ID_TABLE table;
    table.reserve(ids.size());
    for (const std::string& id : ids) {
        table.insert(id);
    }
    std::vector<std::jthread> threads;
    std::vector<std::size_t> right(3);
    for (std::size_t thread = 0; thread < right.size(); ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t number = 0; number < ids.size(); ++number) {
                right[thread] += table.find(ids[number]) == number ? 1 : 0;
            }
        });
    }
    threads.clear();
    for (const std::size_t count : right) {
        EXPECT_EQ(count, ids.size());
    }
}

} // namespace
