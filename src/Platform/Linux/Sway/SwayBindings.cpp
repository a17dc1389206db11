#include "Platform/Linux/Sway/SwayBindings.h"

#include "Platform/Linux/Keyboard/UsKey.h"

#include <algorithm>
#include <map>
#include <optional>

namespace pavonel {

namespace {

struct Combination {
    std::uint32_t modifiers = 0; ///< `mac::` bits; one that the Mac does not have makes `isOther`.
    QByteArray key;
    bool isOther = false;
};

Combination combinationOf(const QByteArray &words) {
    static const std::map<QByteArray, std::uint32_t> modifiers{{"shift", mac::shift},
                                                               {"ctrl", mac::control},
                                                               {"control", mac::control},
                                                               {"mod1", mac::option},
                                                               {"alt", mac::option},
                                                               {"mod4", mac::command},
                                                               {"logo", mac::command},
                                                               {"super", mac::command},
                                                               {"lock", 0},
                                                               {"mod2", 0},
                                                               {"mod3", 0},
                                                               {"mod5", 0}};
    Combination combination;
    const QByteArrayList parts = words.toLower().split('+');
    for (const QByteArray &part : parts) {
        const auto modifier = modifiers.find(part);
        if (modifier == modifiers.end())
            combination.key = part;
        else if (modifier->second == 0)
            combination.isOther = true;
        else
            combination.modifiers |= modifier->second;
    }
    return combination;
}

/// Goes through the lines, with what they say before and around each.
class Reader {
public:
    explicit Reader(const UsKey &key)
        : sign_(QByteArray(1, key.sign).toLower()), code_(QByteArray::number(key.keycode)),
          modifiers_(key.modifiers) {}

    /// Whether this line binds the key.
    bool binds(QByteArray line) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            return false;
        if (line == "}") {
            if (!blocks_.empty())
                blocks_.removeLast();
            return false;
        }
        QByteArrayList words = line.simplified().split(' ');
        if (words.size() > 2 && words[0] == "set") {
            variables_[words[1]] = expanded(words.mid(2).join(' '));
            return false;
        }
        words = expanded(line).simplified().split(' ');
        if (line.endsWith('{')) {
            blocks_.append(words.first());
            return false;
        }
        if (isInBlock("bindsym") || isInBlock("bindcode"))
            words.prepend(blocks_.last());
        return blocks_.size() <= (isInBlock("bindsym") || isInBlock("bindcode") ? 1 : 0) && isOurs(words);
    }

private:
    QByteArray expanded(QByteArray text) const {
        for (auto variable = variables_.crbegin(); variable != variables_.crend(); ++variable)
            text.replace(variable->first, variable->second);
        return text;
    }
    bool isInBlock(const char *name) const { return !blocks_.isEmpty() && blocks_.last() == name; }

    bool isOurs(const QByteArrayList &words) const {
        const bool isCode = words.first() == "bindcode";
        if (!isCode && words.first() != "bindsym")
            return false;
        const auto combination = std::find_if(words.begin() + 1, words.end(),
                                              [](const QByteArray &word) { return !word.startsWith("--"); });
        if (combination == words.end())
            return false;
        const Combination bound = combinationOf(*combination);
        return !bound.isOther && bound.modifiers == modifiers_ && bound.key == (isCode ? code_ : sign_);
    }

    QByteArray sign_;
    QByteArray code_;
    std::uint32_t modifiers_;
    std::map<QByteArray, QByteArray> variables_; ///< The longer of two that begin alike comes later.
    QByteArrayList blocks_;
};

} // namespace

bool isBoundBySway(const QByteArray &configuration, const UsKey &key) {
    Reader reader(key);
    QByteArray whole = configuration;
    whole.replace("\\\n", " ");
    const QByteArrayList lines = whole.split('\n');
    return std::any_of(lines.begin(), lines.end(),
                       [&](const QByteArray &line) { return reader.binds(line); });
}

} // namespace pavonel
