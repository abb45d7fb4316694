// A record with members of every kind.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "json/reflection.h"

namespace lcdfuzz {

struct Item {
    int number = -1;
    std::string text;
    AJSON(number, text)
};

struct Sample {
    int id = -1;
    std::string name;
    float rate = 0;
    bool on = false;
    Item item;
    std::vector<Item> items;
    std::list<int> numbers;
    std::vector<std::string> words;
    std::list<float> rates;
    std::vector<std::list<int>> rows;
    AJSON(id, name, rate, on, item, items, numbers, words, rates, rows)
};

}  // namespace lcdfuzz
