// The contacts of a phone with five sources that all answer at once, and the files in which that phone finds them.
//
// A fifth of the contacts of each source but the first is taken over from a source before it, so that the search has
// something to drop. Two people of the same name never share a number: a row matches by all numbers of the contact that
// it came from, so with two such people the answer would depend on which of them stands for the row.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace bench {

// In the order in which a phone lists them.
enum SourceIndex : std::size_t { localDirectory, callLog, remoteDirectory, broadSoftDirectory, buddies, sourceCount };

using Population = std::array<std::vector<DirectorySearchData>, sourceCount>;

// As many contacts over all sources; the same ones at every run.
Population makePopulation(std::size_t contacts);

// The contact file, below a phone's root, that stands behind the call log here: a call log proper knows one number per
// call, and these contacts have up to three.
inline constexpr const char* callLogContacts = "config/contacts/call_log_contacts.csv";

// Writes contact files, buddies and source list below root.
void writePhone(const Population& population, const std::filesystem::path& root);

} // namespace bench
