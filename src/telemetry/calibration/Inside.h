#pragma once

/// Whether `index` counts one of `count` things, from 0.
constexpr bool Inside(int index, int count) {
    return index >= 0 && index < count;
}
