#include "Fuzz/Target.h"
#include "Fuzz/onlyOne.h"
#include "support/ChildProcess.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>

namespace pavonel::fuzz {

namespace {

/// `hdiutil` beside an unpacker that lists what it is told to, and unpacks nothing.
class ImageFixture {
public:
    ImageFixture() {
        require(QFile::copy(QStringLiteral(PAVONEL_SOURCE_DIR "/libexec/hdiutil"), path("hdiutil")));
        write("confine", "#!/bin/sh\n[ -n \"$2\" ] || exec cat \"$1\"\n");
        QFile::setPermissions(path("confine"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    bool accepts(const QByteArray &listing) const {
        write("image", listing);
        const auto attached =
            hdiutil({QStringLiteral("attach"), path("image"), QStringLiteral("-nobrowse"),
                     QStringLiteral("-quiet"), QStringLiteral("-mountpoint"), path("point")});
        if (attached != 0)
            return false;
        require(hdiutil({QStringLiteral("detach"), path("point"), QStringLiteral("-quiet")}) == 0);
        return true;
    }

private:
    QString path(const char *name) const { return folder_.filePath(QLatin1String(name)); }
    void write(const char *name, const QByteArray &text) const {
        QFile file(path(name));
        require(file.open(QFile::WriteOnly | QFile::Truncate) && file.write(text) == text.size());
    }
    int hdiutil(const QStringList &arguments) const {
        return test::ChildProcess::run(path("hdiutil"), arguments).status;
    }

    QTemporaryDir folder_;
};

/// The rule for one line, told anew: what it is of, permissions without special ones, owner, size, day.
bool isPlain(const QByteArray &line) {
    static const QRegularExpression rule(
        QStringLiteral("^[-dl]([r-][w-][x-]){3} [0-9]+/[0-9]+ +[0-9]+ [0-9]+-"));
    return rule.match(QString::fromLatin1(line)).hasMatch() &&
           std::ranges::all_of(line, [](char character) { return character >= ' ' && character <= '~'; });
}

/// The name stands behind day and time.
QByteArray nameIn(const QByteArray &line) {
    static const QRegularExpression others(QStringLiteral("^[^ ]+ [^ ]+ +[^ ]+ [^ ]+ [^ ]+ | -> .*"));
    return QString::fromLatin1(line).remove(others).toLatin1().toLower();
}

bool mayBeAccepted(const QByteArray &listing) {
    QByteArrayList lines = listing.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    QSet<QByteArray> names;
    return std::ranges::all_of(lines, [&names](const QByteArray &line) {
        const QByteArray name = nameIn(line);
        return isPlain(line) && !std::exchange(names, names | QSet{name}).contains(name);
    });
}

} // namespace

/// What lists a disk image tells of it. Nothing is attached of which a line is not as it must be.
void imageListing(const QByteArray &input) {
    const auto &fixture = onlyOne<ImageFixture>();
    require(!fixture.accepts(input) || mayBeAccepted(input));
}

} // namespace pavonel::fuzz
