// The fuzzer: feeds one decoder with bytes that libFuzzer invents. PAVONEL_FUZZ names the decoder; arguments
// are those of libFuzzer (https://llvm.org/docs/LibFuzzer.html).

#include "Fuzz/Target.h"

#include <QApplication>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

const pavonel::fuzz::Target *chosen = nullptr;

const pavonel::fuzz::Target *find(const char *name) {
    for (const auto &target : pavonel::fuzz::targets()) {
        if (name && std::strcmp(name, target.name) == 0)
            return &target;
    }
    return nullptr;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    chosen = find(std::getenv("PAVONEL_FUZZ"));
    if (!chosen) {
        std::fputs("fuzz: PAVONEL_FUZZ names none of these:\n", stderr);
        for (const auto &target : pavonel::fuzz::targets())
            std::fprintf(stderr, "    %s\n", target.name);
        std::exit(EXIT_FAILURE);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    chosen->run(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}
