#include "EndToEnd/SettingsRoad.h"

#include "support/files.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// A planned break as the store holds it, but for its identity.
QJsonObject planned(const QString &label, int hour, int minute, double duration, QJsonArray weekdays,
                    bool enabled) {
    return {{u"label"_s, label},       {u"hour"_s, hour},         {u"minute"_s, minute},
            {u"duration"_s, duration}, {u"weekdays"_s, weekdays}, {u"enabled"_s, enabled}};
}

QJsonObject today(const QJsonObject &counts) {
    const QJsonObject days{{Desktop::today().toString(Qt::ISODate), counts}};
    const QByteArray data = QJsonDocument(days).toJson(QJsonDocument::Compact).toBase64();
    return {{u"data"_s, QString::fromLatin1(data)}};
}

void installQuill(const QString &applications) {
    writeFile(applications + u"/org.example.quill.desktop"_s,
              "[Desktop Entry]\nType=Application\nName=Quill Writer\nExec=true\n");
}

} // namespace

TEST_F(SettingsRoad, the_breaks_page_is_gone_through_from_outside) {
    start();
    walk(u"breaks.py"_s);
    expectStored({{u"microEnabled"_s, false},
                  {u"microInterval"_s, 5400},
                  {u"microDuration"_s, 35},
                  {u"longEnabled"_s, false},
                  {u"longInterval"_s, 7200},
                  {u"longDuration"_s, 600},
                  {u"preNotifySeconds"_s, 45},
                  {u"showFloatingCountdown"_s, false},
                  {u"allowSkip"_s, false},
                  {u"allowPostpone"_s, false},
                  {u"strictMode"_s, true}});
}

TEST_F(SettingsRoad, planned_breaks_are_added_edited_and_removed_from_outside) {
    start();
    walk(u"planned.py"_s);
    expectStored(
        {{u"plannedBreaks"_s, QJsonArray{planned(u"Tea"_s, 16, 5, 2700, {3, 4, 5, 7}, false),
                                         planned(u"Lunch"_s, 12, 30, 1800, {2, 3, 4, 5, 6}, true)}}});
}

TEST_F(SettingsRoad, the_pausing_page_is_gone_through_from_outside) {
    installQuill(desktop.environment().value(u"XDG_DATA_HOME"_s) + u"/applications"_s);
    start();
    walk(u"pausing.py"_s);
    expectStored({{u"pauseOnFullscreen"_s, false},
                  {u"pauseOnMicrophone"_s, false},
                  {u"pauseOnAudio"_s, true},
                  {u"pauseOnScreenSharing"_s, false},
                  {u"naturalBreakEnabled"_s, false},
                  {u"idleResetSeconds"_s, 120},
                  {u"deepFocusApps"_s, QJsonArray{u"org.example.quill"_s, u"org.example.Unheard-of"_s}}});
}

TEST_F(SettingsRoad, the_appearance_page_is_gone_through_from_outside) {
    const QString picture = desktop.environment().value(u"HOME"_s) + u"/a picture.png"_s;
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    ASSERT_TRUE(image.save(picture));
    start();
    walk(u"appearance.py"_s, {picture});
    expectStored({{u"backgroundStyle"_s, 3},
                  {u"customBackgroundPath"_s, picture},
                  {u"soundEnabled"_s, false},
                  {u"startSound"_s, u"Ping"_s},
                  {u"endSound"_s, u"None"_s},
                  {u"messages"_s, QJsonArray{u"Look 20 feet away for 20 seconds. Your eyes will thank you."_s,
                                             u"Drop your shoulders, tuck your chin back."_s,
                                             u"Look out the window — find the farthest thing you can see."_s,
                                             u"Stand up and stretch a little."_s, u"Count the clouds"_s}}});
}

TEST_F(SettingsRoad, the_wellness_page_is_gone_through_from_outside) {
    start();
    walk(u"wellness.py"_s);
    expectStored({{u"postureEnabled"_s, false},
                  {u"postureInterval"_s, 3600},
                  {u"blinkEnabled"_s, true},
                  {u"blinkInterval"_s, 900}});
}

TEST_F(SettingsRoad, statistics_are_read_and_reset_from_outside) {
    start({{u"stats.days"_s, today({{u"micro"_s, 25},
                                    {u"long"_s, 7},
                                    {u"planned"_s, 3},
                                    {u"skipped"_s, 4},
                                    {u"screenSeconds"_s, 7200},
                                    {u"breakSeconds"_s, 3600}})}});
    walk(u"stats.py"_s);
    expectOnlyStored({{u"didOnboard"_s, true}});
    const QJsonObject left = desktop.statistics();
    for (const QString &count : {u"micro"_s, u"long"_s, u"planned"_s, u"skipped"_s, u"breakSeconds"_s})
        EXPECT_EQ(left[count].toInt(), 0) << count.toStdString();
    EXPECT_LT(left[u"screenSeconds"_s].toInt(), 3600) << "but for what this test took";
}

} // namespace pavonel::test
