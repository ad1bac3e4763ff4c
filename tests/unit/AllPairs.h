// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// A selection of rows over many dimensions, when all rows would be too many.

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace fake {

/// A value, counted from 0, for each dimension.
using Row = std::vector<size_t>;

/// Rows in which each two values of two dimensions meet at least once; always the same ones.
class AllPairs {
public:
    explicit AllPairs(std::vector<size_t> sizes) : sizes_(std::move(sizes))
    {
        for (size_t a = 0; a < sizes_.size(); ++a) {
            for (size_t b = 0; b < a; ++b) {
                for (size_t i = 0; i < sizes_[a] * sizes_[b]; ++i) {
                    open_.insert({a, i / sizes_[b], b, i % sizes_[b]});
                }
            }
        }
    }

    std::vector<Row> Rows()
    {
        std::vector<Row> rows;
        while (!open_.empty()) rows.push_back(NextRow());
        return rows;
    }

private:
    using Pair = std::array<size_t, 4>;  // dimension and value, and those of a lower dimension

    /// Starts from an open pair, and takes for each other dimension the value that meets most open
    /// pairs with what is there; among equals one that wanders with the rows.
    Row NextRow()
    {
        const Pair start = *open_.begin();
        std::vector<std::optional<size_t>> row(sizes_.size());
        row[start[0]] = start[1];
        row[start[2]] = start[3];
        for (size_t d = 0; d < sizes_.size(); ++d) {
            if (!row[d]) row[d] = BestValue(row, d);
        }
        ++turn_;
        Row whole;
        for (const auto& value : row) whole.push_back(*value);
        for (size_t a = 0; a < whole.size(); ++a) {
            for (size_t b = 0; b < a; ++b) open_.erase({a, whole[a], b, whole[b]});
        }
        return whole;
    }

    size_t BestValue(const std::vector<std::optional<size_t>>& row, size_t dimension) const
    {
        size_t best = 0;
        size_t most = 0;
        for (size_t i = 0; i < sizes_[dimension]; ++i) {
            const size_t value = (turn_ + i) % sizes_[dimension];
            const size_t met = 1 + Met(row, dimension, value);
            if (met <= most) continue;
            most = met;
            best = value;
        }
        return best;
    }

    size_t Met(const std::vector<std::optional<size_t>>& row, size_t dimension, size_t value) const
    {
        size_t met = 0;
        for (size_t other = 0; other < row.size(); ++other) {
            if (!row[other] || other == dimension) continue;
            met += dimension > other ? open_.count({dimension, value, other, *row[other]})
                                     : open_.count({other, *row[other], dimension, value});
        }
        return met;
    }

    std::vector<size_t> sizes_;
    std::set<Pair> open_;
    size_t turn_ = 0;
};

}  // namespace fake
