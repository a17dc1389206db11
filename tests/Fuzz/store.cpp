#include "Fuzz/Target.h"
#include "Platform/Qt/StoredJson.h"

namespace pavonel::fuzz {

namespace {

/// A member is kept to the letter, and a value that we understand survives being written and read again.
void checkMember(const QByteArray &text) {
    const auto value = storedJson::decode(text);
    if (!value)
        return;
    const auto written = storedJson::encode(*value);
    require(!written || storedJson::decode(*written) == value);
}

} // namespace

void store(const QByteArray &input) {
    const auto members = storedJson::readMembers(input);
    if (!members)
        return;
    for (const auto &[key, text] : *members)
        checkMember(text);
    require(storedJson::readMembers(storedJson::writeMembers(*members)) == members);
}

} // namespace pavonel::fuzz
