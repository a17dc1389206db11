#include "Platform/Posix/BorrowedDefaults.h"

#include "Platform/Posix/FileDefaults.h"
#include "Platform/Posix/FileLock.h"

#include <utility>

namespace pavonel {

BorrowedDefaults::BorrowedDefaults(QString path, QString lockPath, MainLoop &loop)
    : path_(std::move(path)), lockPath_(std::move(lockPath)), loop_(loop) {}

template <class Use> void BorrowedDefaults::borrow(Use use) const {
    const FileLock lock(lockPath_);
    if (lock.state() == FileLock::State::takenByAnother)
        return;
    FileDefaults store(path_, loop_, FileDefaults::Writing::onTheCallersThread);
    use(store);
    store.flush();
}

std::optional<StoredValue> BorrowedDefaults::value(const QString &key) const {
    std::optional<StoredValue> found;
    borrow([&](const UserDefaults &store) { found = store.value(key); });
    return found;
}

void BorrowedDefaults::set(const QString &key, StoredValue value) {
    borrow([&](UserDefaults &store) { store.set(key, std::move(value)); });
}

void BorrowedDefaults::setLazily(const QString &key, Encoder encode) {
    encoders_[key] = std::move(encode);
    noteChange(key);
}

void BorrowedDefaults::noteChange(const QString &key) {
    const auto encoder = encoders_.find(key);
    if (auto value = encoder == encoders_.end() ? std::nullopt : encoder->second())
        set(key, std::move(*value));
}

void BorrowedDefaults::remove(const QString &key) {
    borrow([&](UserDefaults &store) { store.remove(key); });
}

} // namespace pavonel
