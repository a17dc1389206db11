#include "Platform/Qt/StoredJson.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <utility>

namespace pavonel::storedJson {

namespace {

const QString dataMember = QStringLiteral("data");
const QString dateMember = QStringLiteral("date");

/// A lone JSON value; QJsonDocument reads and writes only arrays and objects.
QJsonValue parsed(const QByteArray &json) {
    return QJsonDocument::fromJson('[' + json + ']').array().at(0);
}

QByteArray written(const QJsonValue &value) {
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.sliced(1, array.size() - 2);
}

/// A member's name as JSON. Names are plain as a rule, and to encode each of them every time would cost more
/// than all the rest of writing.
QByteArray writtenName(const QString &name) {
    const bool isPlain = std::all_of(name.begin(), name.end(), [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'.';
    });
    return isPlain ? '"' + name.toLatin1() + '"' : written(name);
}

/// Cuts the text of an object that is known to be valid into its members.
class MemberScanner {
public:
    explicit MemberScanner(const QByteArray &object) : text_(object), at_(object.indexOf('{') + 1) {}

    bool atMember() {
        skip(" \t\r\n,");
        return text_.at(at_) != '}';
    }

    QString name() {
        QString decoded = parsed(token()).toString();
        skip(" \t\r\n:");
        return decoded;
    }

    QByteArray token() {
        const qsizetype start = at_;
        if (text_.at(at_) == '"')
            passString();
        else if (text_.at(at_) == '{' || text_.at(at_) == '[')
            passContainer();
        else
            passUntil(" \t\r\n,}");
        return text_.sliced(start, at_ - start);
    }

private:
    static bool isOneOf(char c, const char *set) { return std::strchr(set, c) != nullptr; }

    void skip(const char *set) {
        while (isOneOf(text_.at(at_), set))
            ++at_;
    }

    void passUntil(const char *set) {
        while (!isOneOf(text_.at(at_), set))
            ++at_;
    }

    void passString() {
        while (text_.at(++at_) != '"') {
            if (text_.at(at_) == '\\')
                ++at_;
        }
        ++at_;
    }

    void passContainer() {
        int depth = 0;
        do {
            const char c = text_.at(at_);
            if (c == '"') {
                passString();
                continue;
            }
            depth += isOneOf(c, "{[") ? 1 : isOneOf(c, "}]") ? -1 : 0;
            ++at_;
        } while (depth > 0);
    }

    const QByteArray &text_;
    qsizetype at_;
};

/// Nothing for what JSON or a date cannot hold.
struct Encoder {
    using Text = std::optional<QByteArray>;

    Text operator()(bool value) const { return written(value); }
    Text operator()(qint64 value) const { return written(value); }
    Text operator()(double value) const { return std::isfinite(value) ? Text(written(value)) : std::nullopt; }
    Text operator()(const QString &value) const { return written(value); }
    Text operator()(const QStringList &value) const { return written(QJsonArray::fromStringList(value)); }
    /// Statistics are long and written every minute, and nothing in base64 needs an escape.
    Text operator()(const QByteArray &value) const { return "{\"data\":\"" + value.toBase64() + "\"}"; }
    Text operator()(Instant value) const {
        constexpr double year1 = -62135596800;
        constexpr double year10000 = 253402300800;
        const double seconds = value.time_since_epoch().count();
        if (!(seconds >= year1 && seconds < year10000 - 0.001))
            return {};
        const QDateTime date = QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000), Qt::UTC);
        return written(QJsonObject{{dateMember, date.toString(Qt::ISODateWithMs)}});
    }
};

StoredValue decodeNumber(const QJsonValue &number) {
    constexpr double limit = 9223372036854775808.0; // the first that a qint64 does not hold
    const QVariant variant = number.toVariant();
    if (variant.typeId() == QMetaType::LongLong)
        return variant.toLongLong();
    const double fraction = variant.toDouble();
    if (std::trunc(fraction) == fraction && fraction >= -limit && fraction < limit)
        return static_cast<qint64>(fraction);
    return fraction;
}

std::optional<StoredValue> decodeArray(const QJsonArray &array) {
    QStringList strings;
    for (const QJsonValue element : array) {
        if (!element.isString())
            return {};
        strings.append(element.toString());
    }
    return strings;
}

std::optional<StoredValue> decodeObject(const QJsonObject &object) {
    if (object.size() != 1 || !object.begin()->isString())
        return {};
    const QString text = object.begin()->toString();
    if (object.contains(dataMember)) {
        auto data = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        return data ? std::optional<StoredValue>(std::move(*data)) : std::nullopt;
    }
    const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!object.contains(dateMember) || !date.isValid() || date.timeSpec() == Qt::LocalTime)
        return {};
    return Instant(std::chrono::milliseconds(date.toMSecsSinceEpoch()));
}

} // namespace

std::optional<Members> readMembers(const QByteArray &json) {
    if (!QJsonDocument::fromJson(json).isObject())
        return {};
    Members members;
    MemberScanner scanner(json);
    while (scanner.atMember()) {
        QString name = scanner.name();
        members.insert_or_assign(std::move(name), scanner.token());
    }
    return members;
}

QByteArray writeMembers(const Members &members) {
    QByteArray json("{");
    const char *separator = "\n    ";
    for (const auto &[name, value] : members) {
        json.append(separator).append(writtenName(name)).append(": ").append(value);
        separator = ",\n    ";
    }
    return json.append("\n}\n");
}

std::optional<QByteArray> encode(const StoredValue &value) {
    return std::visit(Encoder{}, value);
}

std::optional<StoredValue> decode(const QByteArray &json) {
    const QJsonValue value = parsed(json);
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double:
        return decodeNumber(value);
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Array:
        return decodeArray(value.toArray());
    case QJsonValue::Object:
        return decodeObject(value.toObject());
    default:
        return {};
    }
}

} // namespace pavonel::storedJson
