// Paints the phone's search screen on the terminal, as large as it is; only what has changed is sent.
//
// A Terminal exists. One thread.
#pragma once

#include "tools/wideseek/phone/PhoneModel.h"
#include "tools/wideseek/phone/screens/RowView.h"

#include <optional>
#include <string>
#include <string_view>

namespace wideseek {

struct PhoneStatus {
    bool ldapAsked = false;
    bool searching = false;         // for the rows of the key, so long that people wonder
    std::optional<double> pageTime; // milliseconds from asking to the page that was waited for
    std::optional<double> lateTime; // and to the last late page
    std::string message;            // behind problemPrefix, it tells of a problem
    std::string standing;           // what is wrong now; empty: nothing
};

inline constexpr std::string_view problemPrefix = "Problem: ";

// How many lines the search screen has for rows and what heads them.
int linesOnScreen();

// Which of the model's rows stands on a line of the search screen, both from 0; negative above them. There may be fewer
// rows.
int rowOnLine(const PhoneModel& model, int line);

void paintSearch(const PhoneModel& model, const PhoneStatus& status, RowStyle& style);

} // namespace wideseek
