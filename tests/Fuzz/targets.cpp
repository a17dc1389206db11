#include "Fuzz/Target.h"

namespace pavonel::fuzz {

void store(const QByteArray &input);
void plannedBreaks(const QByteArray &input);
void statistics(const QByteArray &input);
void updateFeed(const QByteArray &input);
void pairing(const QByteArray &input);
void desktopEntry(const QByteArray &input);
void autostartEntry(const QByteArray &input);
void processFolder(const QByteArray &input);
void trayMenu(const QByteArray &input);
void customPicture(const QByteArray &input);
void picturePath(const QByteArray &input);
void imageListing(const QByteArray &input);
void windowProperties(const QByteArray &input);
void busCalls(const QByteArray &input);

const std::vector<Target> &targets() {
    static const std::vector<Target> all{
        {"store", store},
        {"plannedBreaks", plannedBreaks},
        {"statistics", statistics},
        {"updateFeed", updateFeed},
        {"pairing", pairing},
        {"desktopEntry", desktopEntry},
        {"autostartEntry", autostartEntry},
        {"processFolder", processFolder},
        {"trayMenu", trayMenu},
        {"customPicture", customPicture},
        {"picturePath", picturePath},
        {"imageListing", imageListing},
        {"windowProperties", windowProperties},
        {"busCalls", busCalls},
    };
    return all;
}

} // namespace pavonel::fuzz
