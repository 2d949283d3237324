#include <ovGraphics/scene/DrawGroup.h>

#include <algorithm>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>

namespace ovGraphics {

namespace {

constexpr std::size_t AT_ONCE = 1024; // entities that are looked at together

template <typename T>
auto at(ovMemory::Buffer<T>& values, uint32_t index) {
    return values.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

DrawGroup::DrawGroup(const DrawKey& key, Shader* shader, Mesh* mesh)
    : _key(key)
    , _shader(shader)
    , _mesh(mesh) {}

Shader* DrawGroup::getShader() const {
    return _shader.get();
}

Mesh* DrawGroup::getMesh() const {
    return _mesh.get();
}

uint32_t DrawGroup::insert(uint32_t entity, uint64_t order) {
    const auto place = std::lower_bound(_orders.begin(), _orders.end(), order);
    auto index = static_cast<uint32_t>(place - _orders.begin());
    // A gap at either side of the place takes the entity in, and then no other has to move.
    const bool takesGap = index < getSize() && _entities[index] == GAP;
    const bool takesGapBefore = !takesGap && index > 0 && _entities[index - 1] == GAP;
    if (takesGap || takesGapBefore) {
        index -= takesGapBefore ? 1 : 0;
        --_gaps;
    } else {
        if (index < getSize()) { // those behind move up
            isPlaced = false;
            _runsAreStale = true;
            _shownBegin = std::min(_shownBegin, index);
            _shownEnd = getSize() + 1;
        }
        _orders.insert(at(_orders, index), order);
        _entities.insert(at(_entities, index), entity);
        _sights.insert(at(_sights, index), SIGHT::HIDDEN);
        _boxes.insert(index);
    }
    _orders[index] = order;
    _entities[index] = entity;
    return index;
}

void DrawGroup::erase(uint32_t index) {
    hide(index);
    // The others keep their indices, and with them their boxes and the places of their data.
    _entities[index] = GAP;
    ++_gaps;
    uint32_t size = getSize();
    while (size > 0 && _entities[size - 1] == GAP) {
        --size;
        --_gaps;
    }
    _orders.resize(size);
    _entities.resize(size);
    _sights.resize(size);
    _boxes.truncate(size);
}

bool DrawGroup::closeGaps() {
    // Closing gaps moves all the rest, which pays only when more than half of the group is gaps.
    constexpr uint32_t FEW = 16;
    if (_gaps <= FEW || _gaps <= getSize() / 2)
        return false;
    uint32_t out = 0;
    for (uint32_t index = 0; index < getSize(); ++index) {
        if (_entities[index] == GAP)
            continue;
        _orders[out] = _orders[index];
        _entities[out] = _entities[index];
        _sights[out] = _sights[index];
        _boxes.copy(index, out++);
    }
    _orders.resize(out);
    _entities.resize(out);
    _sights.resize(out);
    _boxes.truncate(out);
    _gaps = 0;
    _shownBegin = 0; // their indices are others
    _shownEnd = out;
    _runsAreStale = true;
    isPlaced = false;
    return true;
}

void DrawGroup::show(uint32_t index, const BoundingBox& box, const ovMaths::Matrix& transformation) {
    _boxes.set(index, box, transformation);
    if (_sights[index] == SIGHT::HIDDEN)
        _setSight(index, SIGHT::OUT_OF_VIEW);
    _noteShown(index);
}

bool DrawGroup::move(uint32_t index, const ovMaths::Vector& center) {
    if (!_boxes.setCenter(index, center))
        return false;
    _noteShown(index);
    return true;
}

void DrawGroup::_noteShown(uint32_t index) {
    _shownBegin = std::min(_shownBegin, index);
    _shownEnd = std::max(_shownEnd, index + 1);
}

void DrawGroup::hide(uint32_t index) {
    _setSight(index, SIGHT::HIDDEN);
}

void DrawGroup::_setSight(uint32_t index, SIGHT sight) {
    _runsAreStale = _runsAreStale || _sights[index] != sight;
    _sights[index] = sight;
}

void DrawGroup::updateSights(const Frustum* frustum, unsigned int planeCount, bool all, uint32_t gapLength) {
    // While the camera stands still only what was shown anew can come into view or leave it.
    const std::size_t begin = all ? 0 : _shownBegin;
    const std::size_t end = all ? getSize() : std::min(_shownEnd, getSize());
    unsigned char inside[AT_ONCE];
    if (begin < end)
        std::fill_n(inside, std::min(end - begin, AT_ONCE), static_cast<unsigned char>(1));
    for (std::size_t first = begin; first < end; first += AT_ONCE) {
        const std::size_t last = std::min(first + AT_ONCE, end);
        if (frustum)
            _boxes.check(*frustum, planeCount, first, last, inside);
        for (std::size_t i = first; i < last; ++i) {
            if (_sights[i] != SIGHT::HIDDEN)
                _setSight(static_cast<uint32_t>(i), inside[i - first] ? SIGHT::IN_VIEW : SIGHT::OUT_OF_VIEW);
        }
    }
    _shownBegin = GAP;
    _shownEnd = 0;
    if (_runsAreStale)
        _formRuns(gapLength);
}

void DrawGroup::_formRuns(uint32_t gapLength) {
    _runs.clear();
    _runsAreStale = false;
    bool open = false;
    for (uint32_t index = 0; index < getSize(); ++index) {
        const SIGHT sight = _sights[index];
        if (sight == SIGHT::IN_VIEW) {
            if (!open)
                _runs.push_back({index, 0});
            open = true;
            _runs.back().count = index + 1 - _runs.back().first;
        } else if (open) {
            // A short gap is drawn along, which costs less than another call. Hidden ones are never drawn:
            // they end the run.
            const uint32_t end = _runs.back().first + _runs.back().count;
            open = sight != SIGHT::HIDDEN && index + 1 - end <= gapLength;
        }
    }
}

} // namespace ovGraphics
