// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The timeline as a reader tells it: each reading or writing of a setting file is one step, what is
// nobody's concern is left out.

#include "fake/World.h"

#include <algorithm>
#include <string>
#include <vector>

namespace fake {

/// The text with every occurrence of `part` replaced.
inline std::string Replaced(std::string text, const std::string& part, const std::string& by)
{
    for (size_t place = text.find(part); place != std::string::npos;
         place = text.find(part, place + by.size())) {
        text.replace(place, part.size(), by);
    }
    return text;
}

/// What a file is gone through with under its lock, and the step that it is told as. "%" is the
/// file; the readings of its bytes are left out.
struct Passage {
    Texts calls;
    std::string step;
};

inline const std::vector<Passage>& Passages()
{
    static const Texts kLocked = {"mutex lock net_config_Lock", "open % O_WRONLY|O_APPEND",
                                  "fcntl F_SETLKW F_WRLCK % 0 0 0 own process"};
    static const Texts kFreed = {"fcntl F_SETLKW F_UNLCK % 0 0 0 own process", "close %"};
    static const Texts kWritten = {"fopen % w+", "fflush %", "fileno %", "fsync %", "fclose %"};
    const auto joined = [](std::initializer_list<Texts> parts) {
        Texts whole;
        for (const Texts& part : parts) whole.insert(whole.end(), part.begin(), part.end());
        return whole;
    };
    static const std::vector<Passage> kPassages = {
        {joined(
             {kLocked, {"open % O_RDONLY"}, kFreed, {"close %", "mutex unlock net_config_Lock"}}),
         "read %"},
        {joined(
             {kLocked, {"open % O_RDONLY"}, kFreed, {"mutex unlock net_config_Lock", "close %"}}),
         "read %"},
        {{"mutex lock net_config_Lock", "open % O_WRONLY|O_APPEND", "mutex unlock net_config_Lock"},
         "read % (missing)"},
        {joined({kLocked,
                 {"fopen % r+"},
                 kWritten,
                 {"fclose %"},
                 kFreed,
                 {"mutex unlock net_config_Lock"}}),
         "write %"},
    };
    return kPassages;
}

/// The file that the second call of a passage names.
inline std::string FileOf(const std::string& call)
{
    const size_t begin = call.find(' ') + 1;
    return call.substr(begin, call.find(' ', begin) - begin);
}

/// The step that begins at this place, and how many entries it takes; none when it is no passage.
inline std::string PassageAt(const Texts& entries, size_t place, size_t* taken)
{
    if (place + 1 >= entries.size()) return "";
    const std::string file = FileOf(entries[place + 1]);
    for (const Passage& passage : Passages()) {
        const size_t count = passage.calls.size();
        if (place + count > entries.size()) continue;
        const bool same = std::equal(passage.calls.begin(), passage.calls.end(),
                                     entries.begin() + static_cast<std::ptrdiff_t>(place),
                                     [&](const std::string& call, const std::string& entry) {
                                         return Replaced(call, "%", file) == entry;
                                     });
        if (!same) continue;
        *taken = count;
        return Replaced(passage.step, "%", file);
    }
    return "";
}

/// The steps of the timeline. Files of the settings folder go by their names alone.
inline Texts Steps()
{
    static const Texts kUntold = {"pread ",
                                  "read ",
                                  "calloc",
                                  "malloc",
                                  "fstat ",
                                  "readdir",
                                  "mutex lock wifiname",
                                  "mutex unlock wifiname",
                                  "mutex lock switch",
                                  "mutex unlock switch"};
    Texts entries;
    for (const std::string& entry : Timeline()) {
        const bool untold =
            std::any_of(kUntold.begin(), kUntold.end(),
                        [&](const std::string& start) { return entry.rfind(start, 0) == 0; });
        if (!untold) entries.push_back(entry);
    }
    Texts steps;
    for (size_t place = 0; place < entries.size();) {
        size_t taken = 1;
        const std::string passage = PassageAt(entries, place, &taken);
        steps.push_back(
            Replaced(passage.empty() ? entries[place] : passage, "/mnt/mtd/Config/", ""));
        place += taken;
    }
    return steps;
}

/// The steps that begin with one of the texts.
inline Texts StepsOf(const Texts& starts)
{
    Texts found;
    for (const std::string& step : Steps()) {
        if (std::any_of(starts.begin(), starts.end(),
                        [&](const std::string& start) { return step.rfind(start, 0) == 0; })) {
            found.push_back(step);
        }
    }
    return found;
}

}  // namespace fake
