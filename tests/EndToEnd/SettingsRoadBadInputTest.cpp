#include "EndToEnd/SettingsRoad.h"
#include "support/files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QUuid>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

QJsonObject lunch(const QString &label) {
    return {{u"label"_s, label},
            {u"hour"_s, 12},
            {u"minute"_s, 30},
            {u"duration"_s, 1800},
            {u"weekdays"_s, QJsonArray{2, 3, 4, 5, 6}},
            {u"enabled"_s, true}};
}

QJsonArray numbered(const QString &text, int count) {
    QJsonArray all;
    for (int number = 0; number < count; ++number)
        all.append(text.arg(number));
    return all;
}

QJsonArray plannedBreaks(int count) {
    QJsonArray all;
    for (const QJsonValue label : numbered(u"Planned %1"_s, count))
        all.append(lunch(label.toString()));
    return all;
}

/// As the store holds them.
QJsonObject withIdentities(const QJsonArray &records) {
    QJsonArray all;
    for (const QJsonValue value : records) {
        QJsonObject record = value.toObject();
        record[u"id"_s] = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        all.append(record);
    }
    return {{u"data"_s, QString::fromLatin1(QJsonDocument(all).toJson(QJsonDocument::Compact).toBase64())}};
}

} // namespace

TEST_F(SettingsRoad, texts_of_every_kind_are_taken_as_they_are) {
    const QJsonArray texts{u"🦚 Pfauenzeit 🧘‍♀️"_s, u"הפסקת צהריים"_s,     u"استراحة ١٢"_s,
                           u"<b>&amp;</b> %1 \\n"_s,           QString(10'000, u'w'), u"one\ntwo\r\nthree"_s};
    const QString path = desktop.environment().value(u"HOME"_s) + u"/texts.json"_s;
    writeFile(path, QJsonDocument(texts).toJson());
    start();
    walk(u"texts.py"_s, {path});

    QJsonArray planned;
    for (const QJsonValue text : texts)
        planned.append(lunch(text.toString()));
    QJsonArray messages = defaults()[u"messages"_s].toArray();
    for (const QJsonValue text : texts)
        messages.append(text);
    expectStored({{u"plannedBreaks"_s, planned}, {u"messages"_s, messages}, {u"deepFocusApps"_s, texts}});
}

TEST_F(SettingsRoad, hundreds_of_planned_breaks_and_messages_are_at_hand) {
    start({{u"didOnboard"_s, false},
           {u"plannedBreaks"_s, withIdentities(plannedBreaks(300))},
           {u"messages"_s, numbered(u"Message %1"_s, 500)},
           {u"deepFocusApps"_s, QJsonArray{u""_s, u"org.example.twice"_s, u"org.example.twice"_s}}});
    walk(u"crowds.py"_s);
    expectStored({{u"plannedBreaks"_s, plannedBreaks(299)},
                  {u"messages"_s, numbered(u"Message %1"_s, 499)},
                  {u"deepFocusApps"_s, QJsonArray{u""_s, u"org.example.twice"_s}}});
}

} // namespace pavonel::test
