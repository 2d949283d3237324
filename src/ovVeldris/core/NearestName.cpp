#include <ovVeldris/core/NearestName.h>

#include <algorithm>
#include <numeric>

namespace ovVeldris {

namespace {

using ovMemory::StringView;

constexpr std::size_t MOST_EDITS = 3;
constexpr std::size_t SHORTEST_PART = 4;
constexpr std::size_t LONGEST_NAME = 64; // nobody mistypes more: keeps hostile names cheap

// R. A. Wagner, M. J. Fischer, "The String-to-String Correction Problem", 1974, with one row of the table.
std::size_t countEdits(StringView from, StringView to) {
    ovMemory::Buffer<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

bool isPart(StringView part, StringView whole) {
    return part.size() >= SHORTEST_PART && whole.find(part) != StringView::npos;
}

} // namespace

StringView findNearestName(StringView name, const ovMemory::Buffer<StringView>& known) {
    StringView nearest;
    std::size_t fewest = LONGEST_NAME;
    if (name.size() > LONGEST_NAME)
        return nearest;
    const std::size_t most = std::min(MOST_EDITS, name.size() / 2);
    for (const StringView candidate : known) {
        const bool contains = isPart(name, candidate) || isPart(candidate, name);
        // The difference of the lengths is the least number of edits, and spares the table for most names.
        const std::size_t least =
            std::max(name.size(), candidate.size()) - std::min(name.size(), candidate.size());
        if (!contains && least > most)
            continue;
        const std::size_t edits = countEdits(name, candidate);
        if (edits < fewest && (contains || edits <= most)) {
            fewest = edits;
            nearest = candidate;
        }
    }
    return nearest;
}

ovMemory::String nearestNameHint(StringView name, const ovMemory::Buffer<StringView>& known) {
    const StringView nearest = findNearestName(name, known);
    return nearest.empty() ? ovMemory::String() : " Did you mean '" + ovMemory::String(nearest) + "'?";
}

} // namespace ovVeldris
