#pragma once

#include "UI/SettingsWindow/Rows/Rows.h"

#include <QHash>

#include <algorithm>
#include <iterator>

namespace pavonel {

/// A list that is kept elsewhere and changed entry by entry, each of which has a key: its identity and, where
/// that is there several times, which one of them it is.
template <class List> class EditedList {
public:
    using Entry = typename List::value_type;
    using Identity = std::function<QString(const Entry &)>;

    EditedList(ValueBinding<List> list, Identity identity)
        : list_(std::move(list)), identity_(std::move(identity)) {}

    QStringList keys() const { return keysOf(list_.get()); }

    static QString identityOf(const QString &key) { return key.left(key.lastIndexOf(mark)); }

    /// One that is gone is an empty one, and stays gone.
    ValueBinding<Entry> entry(const QString &key) const {
        return {[this, key] {
                    const List list = list_.get();
                    const qsizetype place = keysOf(list).indexOf(key);
                    return place < 0 ? Entry() : *(list.begin() + place);
                },
                [this, key](const Entry &changed) {
                    List list = list_.get();
                    const qsizetype place = keysOf(list).indexOf(key);
                    if (place < 0)
                        return;
                    *(list.begin() + place) = changed;
                    list_.set(list);
                }};
    }

    /// Without an effect where the entry is gone.
    void remove(const QString &key, UndoRow &undo, const QString &name) const {
        List list = list_.get();
        const qsizetype place = keysOf(list).indexOf(key);
        if (place < 0)
            return;
        undo.offer(name, [binding = list_, place, gone = *(list.begin() + place)] {
            List now = binding.get();
            now.insert(now.begin() + std::min(place, qsizetype{std::ssize(now)}), gone);
            binding.set(now);
        });
        list.erase(list.begin() + place);
        list_.set(list);
    }

private:
    static constexpr QChar mark = u'\x1f';

    QStringList keysOf(const List &list) const {
        QHash<QString, int> seen;
        QStringList keys;
        for (const Entry &entry : list) {
            const QString identity = identity_(entry);
            keys.append(identity + mark + QString::number(seen[identity]++));
        }
        return keys;
    }

    ValueBinding<List> list_;
    Identity identity_;
};

} // namespace pavonel
