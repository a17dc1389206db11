#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>

namespace pavonel::fuzz {

/// Takes an input apart from its front. At its end everything is zero or empty.
class Source {
public:
    explicit Source(const QByteArray &input) : input_(input) {}

    bool isEmpty() const { return at_ >= input_.size(); }

    int byte() { return static_cast<unsigned char>(rest(1).isEmpty() ? '\0' : input_.at(at_ - 1)); }

    int number() {
        int value = 0;
        const QByteArray bytes = rest(sizeof value);
        std::memcpy(&value, bytes.constData(), static_cast<std::size_t>(bytes.size()));
        return value;
    }

    /// A byte for the length, and the text.
    QString text() { return QString::fromUtf8(rest(byte())); }

    /// As many bytes as there still are, at most.
    QByteArray rest(qsizetype most) {
        const QByteArray bytes = input_.mid(at_, most);
        at_ += bytes.size();
        return bytes;
    }

private:
    const QByteArray &input_;
    qsizetype at_ = 0;
};

} // namespace pavonel::fuzz
