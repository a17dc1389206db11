#pragma once

#include "Core/Updater.h"
#include "support/FakePlatform.h"
#include "support/UpdaterStates.h"
#include "support/files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <filesystem>

#include <gtest/gtest.h>

namespace pavonel::test {

/// Version 1.2.0 runs, the feed offers 1.3.0, and tools are made of paper. What attaches a disk image makes a
/// folder with a bundle in it, what copies copies.
class UpdateFixture : public ::testing::Test {
protected:
    using Run = FakeToolRunner::Run;

    const QByteArray image = "a disk image";
    QTemporaryDir folder;
    FakePlatform platform;
    std::optional<Updater> updater;
    QString application = QStringLiteral("Pavonel.app"); ///< Its name in the disk image.

    UpdateFixture() {
        platform.copy.temporary = folder.path();
        platform.toolRunner.answer = [this](const QString &tool, const QStringList &arguments) {
            return work(tool, arguments);
        };
        start("https://example.org/updates.json");
    }

    void start(const char *feedAddress) { updater.emplace(platform, QUrl(QString::fromUtf8(feedAddress))); }

    QString path(const QString &name) const { return folder.filePath(name); }
    bool exists(const QString &name) const { return QFile::exists(path(name)); }
    QByteArray read(const QString &name) const { return readFile(path(name)); }
    void write(const QString &name, const QByteArray &content) const { writeFile(path(name), content); }

    /// As if it had last been changed so many seconds ago.
    void age(const QString &name, Seconds seconds) const {
        const auto changed = std::chrono::duration_cast<std::chrono::milliseconds>(
            (platform.loop.now() + -seconds).time_since_epoch());
        const auto time = std::filesystem::file_time_type::clock::from_sys(
            std::chrono::sys_time<std::chrono::milliseconds>(changed));
        std::filesystem::last_write_time(QFile::encodeName(path(name)).toStdString(), time);
    }

    struct Offer {
        QString version = QStringLiteral("1.3.0");
        QString url = QStringLiteral("https://example.org/Pavonel.dmg");
        QString sha256 = {};
        QJsonValue signature = QJsonValue::Undefined; ///< No member when undefined.
    };
    /// With the right checksum unless the offer has one.
    void checkAndFind(const Offer &offer) {
        const QByteArray sum = QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex();
        QJsonObject feed{
            {QStringLiteral("version"), offer.version},
            {QStringLiteral("url"), offer.url},
            {QStringLiteral("sha256"), offer.sha256.isEmpty() ? QString::fromLatin1(sum) : offer.sha256},
            {QStringLiteral("notes"), QStringLiteral("Calmer.")}};
        if (!offer.signature.isUndefined())
            feed.insert(QStringLiteral("signature"), offer.signature);
        updater->check(Updater::CheckKind::interactive);
        platform.web.exchanges.back().answer(HttpResponse{200, QJsonDocument(feed).toJson()});
        platform.loop.advance(0);
    }
    void installOffer(const Offer &offer) {
        checkAndFind(offer);
        updater->install();
    }

    /// On this thread; the main thread does its part with the next turn of its loop.
    void downloadArrives() {
        write(QStringLiteral("download-1"), image);
        platform.web.downloads.back().answer(path(QStringLiteral("download-1")));
    }
    void installWhole(const Offer &offer) {
        installOffer(offer);
        ASSERT_FALSE(platform.web.downloads.empty());
        downloadArrives();
        platform.loop.advance(0);
    }

    /// Lets a tool answer so, whatever it is asked. By its name, or "attach", "detach" and "codesign of the
    /// image".
    void let(const QString &tool, const ToolRunner::Outcome &outcome) { outcomes_[tool] = outcome; }
    void letFail(const QString &tool, const QByteArray &output) { let(tool, ToolRunner::Ended{1, output}); }

    QStringList toolsRun() const {
        QStringList names;
        for (const auto &[tool, arguments] : platform.toolRunner.runs)
            names.append(shortName(tool, arguments));
        return names;
    }
    QString mountPoint() const { return platform.toolRunner.runs.at(0).second.last(); }

    static Updater::State failed(const QString &message) { return Updater::Failed{message}; }
    QString message() const {
        const auto *failure = std::get_if<Updater::Failed>(&updater->state.get());
        return failure ? failure->message : QStringLiteral("(it did not fail)");
    }

private:
    static QString shortName(const QString &tool, const QStringList &arguments) {
        const QString name = QFileInfo(tool).fileName();
        if (name == u"codesign" && arguments.contains(QStringLiteral("--detached")))
            return QStringLiteral("codesign of the image");
        return name == u"hdiutil" ? arguments.value(0) : name;
    }

    ToolRunner::Outcome work(const QString &tool, const QStringList &arguments) {
        const QString name = shortName(tool, arguments);
        const auto found = outcomes_.find(name);
        if (found != outcomes_.end())
            return found->second;
        if (name == u"attach")
            QDir().mkpath(arguments.last() + u'/' + application);
        if (name == u"cp")
            QDir().mkpath(arguments.last());
        return ToolRunner::Ended{};
    }

    std::map<QString, ToolRunner::Outcome> outcomes_;
};

} // namespace pavonel::test
