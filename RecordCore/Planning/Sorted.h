#pragma once

#include <algorithm>
#include <vector>

namespace RecordCore {

/// A view of a list in ascending order of a key: the list itself when it is in order already, else a stably
/// sorted copy. The list must outlive the view.
template <typename T>
class Sorted {
public:
    template <typename Key>
    Sorted(const std::vector<T>& list, Key key) : entries(&list) {
        const auto before = [&key](const T& a, const T& b) { return key(a) < key(b); };
        if (std::is_sorted(list.begin(), list.end(), before)) return;
        copy = list;
        std::stable_sort(copy.begin(), copy.end(), before);
        entries = &copy;
    }
    Sorted(const Sorted&) = delete;
    Sorted& operator=(const Sorted&) = delete;

    const std::vector<T>& operator*() const { return *entries; }
    const std::vector<T>* operator->() const { return entries; }

private:
    const std::vector<T>* entries;
    std::vector<T> copy;
};

} // namespace RecordCore
