#pragma once

#include "Platform/Inset.h"
#include "Platform/Platform.h"
#include "support/VirtualMainLoop.h"

#include <QHash>
#include <QImage>
#include <QPainter>
#include <QWindow>

#include <utility>

namespace pavonel::test {

/// A fake of a service that can be made unable to work.
template <class Service> struct Limited : Service {
    QString reason; ///< Empty while it works.

    QString limitation() const override { return reason; }
};

struct FakeDefaults final : UserDefaults {
    mutable QHash<QString, StoredValue> values;
    mutable QHash<QString, Encoder> encoders;
    QStringList written;   ///< The keys in the order of their writing.
    QStringList changes;   ///< The keys whose encoders are told to yield another value.
    int registrations = 0; ///< Of encoders.
    int saves = 0;

    std::optional<StoredValue> value(const QString &key) const override {
        if (const auto encoder = encoders.constFind(key); encoder != encoders.constEnd()) {
            if (auto encoded = (*encoder)())
                values[key] = std::move(*encoded);
        }
        const auto found = values.constFind(key);
        return found == values.constEnd() ? std::nullopt : std::optional(*found);
    }
    void set(const QString &key, StoredValue value) override {
        written.append(key);
        encoders.remove(key);
        values[key] = std::move(value);
    }
    void setLazily(const QString &key, Encoder encode) override {
        ++registrations;
        encoders[key] = std::move(encode);
    }
    void noteChange(const QString &key) override { changes.append(key); }
    void remove(const QString &key) override {
        encoders.remove(key);
        values.remove(key);
    }
    void save() override { ++saves; }
    void flush() override { ++saves; }
};

struct FakeTermination final : Termination {
    std::function<void()> save;
    std::function<void()> end;

    void onSave(std::function<void()> handler) override { save = std::move(handler); }
    void onEnd(std::function<void()> handler) override { end = std::move(handler); }
};

struct FakePowerEvents final : Limited<PowerEvents> {
    std::function<void()> sleep;
    std::function<void()> wake;

    void onSleep(std::function<void()> handler) override { sleep = std::move(handler); }
    void onWake(std::function<void()> handler) override { wake = std::move(handler); }
};

struct FakeScreens final : Screens {
    std::vector<Screen> screens{{QStringLiteral("A"), {0, 0, 1920, 1080}, {0, 24, 1920, 1056}, true}};
    int queries = 0;
    bool keepsNames = true;

    bool keepNames() const override { return keepsNames; }
    std::vector<Screen> all() override {
        ++queries;
        return screens;
    }
};

struct FakePointer final : Limited<Pointer> {
    std::optional<QPointF> where = QPointF(400, 300);
    int queries = 0;

    std::optional<QPointF> position() override {
        ++queries;
        return where;
    }
};

struct FakeIdleTime final : Limited<IdleTime> {
    Seconds seconds = 0;
    int queries = 0;

    Seconds idleSeconds() override {
        ++queries;
        return seconds;
    }
};

struct FakeAudioDevices final : Limited<AudioDevices> {
    bool input = false;
    bool output = false;
    int queries = 0;

    bool isDefaultInputRunning() override {
        ++queries;
        return input;
    }
    bool isDefaultOutputRunning() override {
        ++queries;
        return output;
    }
};

struct FakeApplications final : Limited<Applications> {
    std::vector<Application> applications;
    std::optional<Application> front;
    bool mayHaveBegun = false; ///< One that no event tells of.
    int runningQueries = 0;
    int frontmostQueries = 0;

    std::vector<Application> running() override {
        ++runningQueries;
        return applications;
    }
    bool mayRunMore() override { return mayHaveBegun; }
    std::optional<Application> frontmost() override {
        ++frontmostQueries;
        return front;
    }
};

struct FakeInstalledApplications final : InstalledApplications {
    std::vector<InstalledApplication> applications;
    QHash<QString, QImage> icons;

    std::vector<InstalledApplication> all() override { return applications; }
    QImage icon(const QString &bundleIdentifier, int) override { return icons.value(bundleIdentifier); }
};

struct FakeWindowList final : Limited<WindowList> {
    std::vector<OnScreenWindow> windows;
    int queries = 0;

    std::vector<OnScreenWindow> onScreenWindows() override {
        ++queries;
        return windows;
    }
};

struct FakeWindowLayers final : Limited<WindowLayers> {
    struct Assignment {
        QWindow *window;
        WindowLayer layer;
        Screen screen;
    };
    std::vector<Assignment> assignments;
    int keyboardTaken = 0;
    int keyboardYielded = 0;
    bool places = true;
    bool blends = true;
    bool fades = true; ///< As far as it blends.
    mutable int fadeQuestions = 0;
    QRegion lastCut;

    Qt::WindowFlags windowFlags(WindowLayer layer) const override {
        const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint;
        return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
    }
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override {
        assignments.push_back({&window, layer, screen});
        window.show();
    }
    bool givesInsets = false;
    QRect insetPlace; ///< In points.
    QImage insetShown;

    std::unique_ptr<Inset> inset(QWindow &window, const QRect &points) override {
        struct FakeInset final : Inset {
            FakeInset(QSize size, double ratio, QImage &onScreen) : Inset(size, ratio), screen(onScreen) {
                screen = QImage(picture().size(), QImage::Format_RGB32);
                screen.fill(Qt::magenta);
            }
            void show(const QRect &pixels) override {
                QPainter(&screen).drawImage(pixels.topLeft(), picture().copy(pixels));
            }
            QImage &screen;
        };
        insetPlace = points;
        if (!givesInsets)
            return nullptr;
        return std::make_unique<FakeInset>(points.size(), window.devicePixelRatio(), insetShown);
    }
    bool placesPanels() const override { return places; }
    bool canBlend() const override { return blends; }
    bool canFade() const override {
        ++fadeQuestions;
        return blends && fades;
    }
    void cutTo(QWindow &, const QRegion &pixels) override { lastCut = pixels; }
    void takeKeyboard(QWindow &) override { ++keyboardTaken; }
    void yieldKeyboard() override { ++keyboardYielded; }
};

struct FakeNotifications final : Notifications {
    std::vector<const Notice *> shown; ///< The oldest first.

    std::unique_ptr<Shown> show(Notice notice) override {
        return std::make_unique<OnScreen>(*this, std::move(notice));
    }

private:
    struct OnScreen final : Shown {
        OnScreen(FakeNotifications &owner, Notice shownNotice) : all(owner), notice(std::move(shownNotice)) {
            all.shown.push_back(&notice);
        }
        ~OnScreen() override { std::erase(all.shown, &notice); }
        FakeNotifications &all;
        Notice notice;
    };
};

struct FakeHotKeys final : Limited<HotKeyService> {
    struct Key {
        std::uint32_t keyCode;
        std::uint32_t modifiers;
        std::uint32_t identifier;
        bool operator==(const Key &) const = default;
    };
    std::vector<Key> registered; ///< Live registrations.
    std::vector<Key> attempts;
    bool refuses = false;
    PressHandler handler;
    int handlersSet = 0;

    void setPressHandler(PressHandler pressHandler) override {
        handler = std::move(pressHandler);
        ++handlersSet;
    }
    std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t identifier) override {
        const Key key{keyCode, modifiers, identifier};
        attempts.push_back(key);
        if (refuses)
            return nullptr;
        registered.push_back(key);
        return std::make_unique<Registration>(*this, key);
    }

private:
    struct Registration final : HotKeyRegistration {
        Registration(FakeHotKeys &owner, Key registeredKey) : keys(owner), key(registeredKey) {}
        ~Registration() override {
            const auto found = std::find(keys.registered.begin(), keys.registered.end(), key);
            if (found != keys.registered.end())
                keys.registered.erase(found);
        }
        FakeHotKeys &keys;
        Key key;
    };
};

struct FakeSounds final : Limited<Sounds> {
    QStringList played;

    void play(const QString &name) override { played.append(name); }
    QStringList names() override { return {QStringLiteral("Glass"), QStringLiteral("Submarine")}; }
};

struct FakeProcessLauncher final : Limited<ProcessLauncher> {
    using Launch = std::pair<QString, QStringList>;
    std::vector<Launch> launches;
    std::vector<SearchPath> searchPaths;
    bool succeeds = true;

    bool launch(const QString &program, const QStringList &arguments,
                SearchPath searchPath = SearchPath::usual) override {
        launches.emplace_back(program, arguments);
        searchPaths.push_back(searchPath);
        return succeeds;
    }
};

struct FakeToolRunner final : ToolRunner {
    using Run = std::pair<QString, QStringList>;
    std::vector<Run> runs;
    std::function<Outcome(const QString &tool, const QStringList &arguments)> answer =
        [](const QString &, const QStringList &) { return Ended{}; };

    Outcome run(const QString &tool, const QStringList &arguments) override {
        runs.emplace_back(tool, arguments);
        return answer(tool, arguments);
    }
};

struct FakeInstallation final : Installation {
    QString reason;
    std::optional<QString> runningVersion = QStringLiteral("1.2.0");
    QString runningBundle = QStringLiteral("/home/user/Applications/Pavonel.app");
    std::optional<QString> versionInPlace = runningVersion; ///< Of what lies in the bundle's place now.
    std::optional<QString> otherVersion = QStringLiteral("1.3.0"); ///< Of whichever other bundle.
    QString temporary;                                             ///< A test that writes there gives one.
    bool imagesAreSigned = false;
    bool isBeingReplaced = false;
    QString replacingScript;
    std::function<void()> tellSuccessor;

    QString limitation() const override { return reason; }
    std::optional<QString> version() const override { return runningVersion; }
    QString bundle() const override { return runningBundle; }
    std::optional<QString> versionOf(const QString &someBundle) const override {
        return someBundle == runningBundle ? versionInPlace : otherVersion;
    }
    QString successor() const override {
        return versionInPlace == runningVersion ? QString() : runningBundle;
    }
    void onSuccessor(std::function<void()> handler) override { tellSuccessor = std::move(handler); }
    QString temporaryFolder() override { return temporary; }
    bool wereImagesSigned() const override { return imagesAreSigned; }
    void keepThatImagesAreSigned() override { imagesAreSigned = true; }
    bool beginReplacing(const QString &script) override {
        replacingScript = script;
        return !std::exchange(isBeingReplaced, true);
    }
    void abandonReplacing() override { isBeingReplaced = false; }
};

struct FakeLoginItem final : Limited<LoginItem> {
    bool enabled = false;
    std::optional<QString> failure;
    std::vector<bool> requests;

    bool isEnabled() override { return enabled; }
    std::optional<QString> setEnabled(bool wanted) override {
        requests.push_back(wanted);
        if (!failure)
            enabled = wanted;
        return failure;
    }
};

struct FakeDesktopExtension final : Limited<DesktopExtension> {
    bool possible = false;
    bool on = false;
    std::function<void()> changed;

    bool isPossible() override { return possible; }
    bool isOn() const override { return on; }
    void setOn(bool wanted) override { on = wanted; }
    void onChange(std::function<void()> listener) override { changed = std::move(listener); }
};

struct FakeAppearance final : Appearance {
    AppearanceWishes current;

    AppearanceWishes wishes() override { return current; }
    void change(AppearanceWishes wanted) {
        current = wanted;
        tellChange();
    }
};

struct FakeStatusItem final : Limited<StatusItem> {
    QString icon;
    std::vector<QImage> images;
    QString title;
    std::function<Menu()> makeMenu;
    int changes = 0;

    void setIcon(const QString &name, const std::vector<QImage> &sizes) override {
        icon = name;
        images = sizes;
        ++changes;
    }
    void setTitle(const QString &text) override {
        title = text;
        ++changes;
    }
    void setMenu(std::function<Menu()> menu) override { makeMenu = std::move(menu); }
};

struct FakeHttpClient final : HttpClient {
    struct Exchange {
        HttpRequest request;
        Completion answer; ///< For the test to call, any time or never.
    };
    struct FileExchange {
        HttpDownload request;
        FileCompletion answer;
    };
    std::vector<Exchange> exchanges;
    std::vector<FileExchange> downloads;

    void send(const HttpRequest &request, Completion completion) override {
        exchanges.push_back({request, std::move(completion)});
    }
    void download(const HttpDownload &request, FileCompletion completion) override {
        downloads.push_back({request, std::move(completion)});
    }
};

/// A platform of plain fakes; the references name them by their own types.
struct FakePlatform : Platform {
    explicit FakePlatform(const QByteArray &zoneId = "UTC") : FakePlatform(new VirtualMainLoop(zoneId)) {}

    VirtualMainLoop &loop;
    FakeDefaults &fakeDefaults;
    FakeTermination &ending;
    FakePowerEvents &powerEvents;
    FakeScreens &fakeScreens;
    FakePointer &mouse;
    FakeIdleTime &idle;
    FakeAudioDevices &audio;
    FakeApplications &apps;
    FakeInstalledApplications &installed;
    FakeWindowList &windows;
    FakeWindowLayers &layers;
    FakeNotifications &notices;
    FakeHotKeys &keys;
    FakeSounds &fakeSounds;
    FakeProcessLauncher &launcher;
    FakeToolRunner &toolRunner;
    FakeInstallation &copy;
    FakeLoginItem &login;
    FakeDesktopExtension &extension;
    FakeAppearance &colours;
    FakeStatusItem &menuBar;
    FakeHttpClient &web;

private:
    explicit FakePlatform(VirtualMainLoop *virtualLoop)
        : loop(give(mainLoop, virtualLoop)), fakeDefaults(give(defaults, new FakeDefaults)),
          ending(give(termination, new FakeTermination)), powerEvents(give(power, new FakePowerEvents)),
          fakeScreens(give(screens, new FakeScreens)), mouse(give(pointer, new FakePointer)),
          idle(give(idleTime, new FakeIdleTime)), audio(give(audioDevices, new FakeAudioDevices)),
          apps(give(applications, new FakeApplications)),
          installed(give(installedApplications, new FakeInstalledApplications)),
          windows(give(windowList, new FakeWindowList)), layers(give(windowLayers, new FakeWindowLayers)),
          notices(give(notifications, new FakeNotifications)), keys(give(hotKeys, new FakeHotKeys)),
          fakeSounds(give(sounds, new FakeSounds)), launcher(give(processes, new FakeProcessLauncher)),
          toolRunner(give(tools, new FakeToolRunner)), copy(give(installation, new FakeInstallation)),
          login(give(loginItem, new FakeLoginItem)),
          extension(give(desktopExtension, new FakeDesktopExtension)),
          colours(give(appearance, new FakeAppearance)), menuBar(give(statusItem, new FakeStatusItem)),
          web(give(http, new FakeHttpClient)) {}

    template <class Interface, class Fake> static Fake &give(std::unique_ptr<Interface> &place, Fake *fake) {
        place.reset(fake);
        return *fake;
    }
};

} // namespace pavonel::test
