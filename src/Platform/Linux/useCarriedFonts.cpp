#include "Platform/CarriedFonts.h"
#include "Platform/GivenEnvironment.h"

#include <QFile>
#include <QFileInfo>

namespace pavonel {

void useCarriedFonts() {
    constexpr const char *variable = "FONTCONFIG_FILE";
    const QString program = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
    const QString configuration = program + QStringLiteral("/fonts.conf");
    if (!qEnvironmentVariableIsSet(variable) && QFileInfo::exists(configuration))
        setForUsAlone(variable, QFile::encodeName(configuration));
}

} // namespace pavonel
