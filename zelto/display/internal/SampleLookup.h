#pragma once

#include "zelto/display/internal/SamplePositions.h"
#include "zelto/display/internal/WindowSamples.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace zelto {

/// What is shown of the samples of a window, one `Entry` per sample: a table of the values that
/// occur for 8- and 16-bit types, a conversion of runs of samples for the others. Const after
/// construction, for use by several threads. The samples must outlive it.
template <typename Entry>
class SampleLookup {
  public:
    /// Converts `count` samples, at most SamplePositions::chunk; called by several threads.
    using Convert = std::function<void(const double* samples, int count, Entry* entries)>;

    /// @param missing the entry of output pixels that have no sample
    SampleLookup(const WindowSamples& samples, Convert convert, Entry missing)
        : m_samples(samples), m_convert(std::move(convert)), m_missing(missing) {
        samples.Visit([&](const auto& values) { MakeTable(values); });
    }

    /// The entries of a run of output pixels.
    void Get(const SamplePositions::Run& run, Entry* entries) const {
        if (run.base == SamplePositions::outside)
            std::fill_n(entries, run.count, m_missing);
        else
            m_samples.Visit([&](const auto& values) { Get(values.data(), run, entries); });
    }

    /// Whether `count` samples from `first` on are the same as those from `other` on, bit by bit.
    bool AreSame(std::ptrdiff_t first, std::ptrdiff_t other, int count) const {
        return m_samples.Visit([&](const auto& values) {
            return std::memcmp(values.data() + first, values.data() + other,
                               static_cast<std::size_t>(count) * sizeof values[0]) == 0;
        });
    }

    Entry Missing() const { return m_missing; }

  private:
    template <typename T>
    static constexpr bool isSmall = std::is_integral_v<T> && sizeof(T) <= 2;

    /// Fills the table with the entries of all values between the least and the greatest
    /// sample, unless there are fewer samples than that.
    template <typename Samples>
    void MakeTable(const Samples& values) {
        using T = typename Samples::value_type;
        if constexpr (isSmall<T>) {
            T least = std::numeric_limits<T>::max();
            T greatest = std::numeric_limits<T>::lowest();
            for (const T value : values) {
                least = std::min(least, value);
                greatest = std::max(greatest, value);
            }
            if (least > greatest || static_cast<std::size_t>(greatest - least) >= values.size())
                return;
            m_first = least;
            m_table.resize(static_cast<std::size_t>(greatest - least) + 1);
            FillTable();
        }
    }

    void FillTable() {
        std::array<double, SamplePositions::chunk> samples;
        for (std::size_t done = 0; done < m_table.size(); done += samples.size()) {
            const std::size_t count = std::min(samples.size(), m_table.size() - done);
            for (std::size_t i = 0; i < count; ++i)
                samples[i] = m_first + static_cast<double>(done + i);
            m_convert(samples.data(), static_cast<int>(count), m_table.data() + done);
        }
    }

    template <typename T>
    void LookUp(const T* line, const SamplePositions::Run& run, Entry* entries) const {
        // Copies, so that the compiler need not load them again after every store.
        const Entry* table = m_table.data();
        const std::ptrdiff_t first = m_first;
        const Entry missing = m_missing;
        const std::ptrdiff_t* offsets = run.offsets;
        const int count = run.count;
        if (run.isConsecutive) {
            const T* samples = line + offsets[0];
            for (int i = 0; i < count; ++i)
                entries[i] = table[samples[i] - first];
        } else if (run.isInside) {
            for (int i = 0; i < count; ++i)
                entries[i] = table[line[offsets[i]] - first];
        } else {
            for (int i = 0; i < count; ++i)
                entries[i] = offsets[i] < 0 ? missing : table[line[offsets[i]] - first];
        }
    }

    template <typename T>
    void Get(const T* values, const SamplePositions::Run& run, Entry* entries) const {
        const T* line = values + run.base;
        if constexpr (isSmall<T>) {
            if (!m_table.empty()) {
                LookUp(line, run, entries);
                return;
            }
        }
        std::array<double, SamplePositions::chunk> samples;
        for (int i = 0; i < run.count; ++i)
            samples[i] = run.offsets[i] < 0 ? 0.0 : static_cast<double>(line[run.offsets[i]]);
        m_convert(samples.data(), run.count, entries);
        for (int i = 0; i < run.count; ++i)
            if (run.offsets[i] < 0)
                entries[i] = m_missing;
    }

    const WindowSamples& m_samples;
    Convert m_convert;
    Entry m_missing;
    std::ptrdiff_t m_first = 0; ///< value of the table's first entry
    std::vector<Entry> m_table; ///< empty: convert run by run
};

} // namespace zelto
