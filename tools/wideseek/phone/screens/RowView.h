// Paints the rows of the search screen, each on a line, in columns that fit them.
//
// A Terminal exists. One thread.
#pragma once

#include "tools/wideseek/phone/PhoneModel.h"
#include "tools/wideseek/phone/screens/RowColumns.h"

#include <string>
#include <vector>

namespace wideseek {

// What the rows are painted with besides themselves.
struct RowStyle {
    std::vector<std::string> sources; // of each row the label of its source; fewer: they are not told
    RowColumns columns;               // fitted at each painting
};

// Paints the rows of the model on the lines from this one on, as many as there are lines.
void paintRows(const PhoneModel& model, RowStyle& style, int line, int lines);

// What a row shows beside name and number.
const std::string& extraOf(const WideseekItemData& row);

} // namespace wideseek
