#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

// The storage of a data pool: keys (in byte-wise order) to objects the pool owns. An object
// replaced under its key is not destroyed then, but stays owned until the storage goes, so
// nothing leaks and nothing is deleted twice when one object sits under several keys.
template <typename T> class KeyedObjects {
public:
    KeyedObjects() = default;
    // Instantiate only where T is complete: pools define their destructors out of line.
    ~KeyedObjects() {
        static_assert(sizeof(T) > 0, "T must be complete where the storage is destroyed");
        for (T* object : owned) {
            delete object;
        }
    }
    KeyedObjects(const KeyedObjects&) = delete;
    KeyedObjects& operator=(const KeyedObjects&) = delete;

    void put(const std::string& key, T* object) {
        byKey[key] = object;
        if (object != nullptr && std::find(owned.begin(), owned.end(), object) == owned.end()) {
            owned.push_back(object);
        }
    }

    // The object, or null when the key is absent.
    T* get(const std::string& key) const {
        auto found = byKey.find(key);
        return found != byKey.end() ? found->second : nullptr;
    }

    bool has(const std::string& key) const { return byKey.count(key) != 0; }

    // Forgets the key; its object stays owned until the storage goes.
    void erase(const std::string& key) { byKey.erase(key); }

    // The i-th entry in key order (not range-checked beyond the map's own walk).
    typename std::map<std::string, T*>::const_iterator at(int index) const {
        return std::next(byKey.begin(), index);
    }

    const std::map<std::string, T*>& map() const { return byKey; }
    // Every object owned, in the order first added, also those no key names any more.
    const std::vector<T*>& objects() const { return owned; }
    int size() const { return static_cast<int>(byKey.size()); }

private:
    std::map<std::string, T*> byKey;
    std::vector<T*> owned;
};
