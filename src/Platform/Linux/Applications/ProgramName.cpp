#include "Platform/Linux/Applications/ProgramName.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pavonel {

namespace {

QByteArray baseName(const QByteArray &path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

/// "python3.11" as well as "python".
bool isInterpreter(const QByteArray &program) {
    using namespace std::string_view_literals;
    static constexpr std::array names{"bash"sv, "dash"sv, "gjs"sv,    "gjs-console"sv, "mono"sv, "node"sv,
                                      "perl"sv, "php"sv,  "python"sv, "ruby"sv,        "sh"sv,   "zsh"sv};
    auto length = program.size();
    while (length > 0 &&
           ((program[length - 1] >= '0' && program[length - 1] <= '9') || program[length - 1] == '.'))
        --length;
    const std::string_view name(program.constData(), static_cast<std::size_t>(length));
    return std::find(names.begin(), names.end(), name) != names.end();
}

QByteArray scriptName(const QByteArrayList &arguments, qsizetype from) {
    for (qsizetype index = from; index < arguments.size(); ++index) {
        const QByteArray &argument = arguments[index];
        if (argument == "-c" || argument == "-e")
            return {}; // the program itself stands on the command line
        if (!argument.startsWith('-'))
            return baseName(argument);
    }
    return {};
}

} // namespace

QByteArray programName(const QByteArrayList &arguments) {
    qsizetype index = 0;
    if (index < arguments.size() && baseName(arguments[index]) == "env") {
        ++index;
        while (index < arguments.size() &&
               (arguments[index].contains('=') || arguments[index].startsWith('-')))
            ++index;
    }
    if (index >= arguments.size())
        return {};
    QByteArray program = baseName(arguments[index]);
    if (!isInterpreter(program))
        return program;
    const QByteArray script = scriptName(arguments, index + 1);
    return script.isEmpty() ? program : script;
}

} // namespace pavonel
