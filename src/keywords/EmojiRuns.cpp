#include "keywords/EmojiRuns.h"

namespace scrivlet {

namespace {

// Characters that only ever appear inside an emoji sequence: they extend a run but
// never start one (a lone variation selector after a letter is no emoji).
bool isEmojiContinuation(char32_t c)
{
    return c == 0x200D                      // zero-width joiner of family and profession emoji
           || c == 0xFE0F                   // emoji presentation selector
           || c == 0x20E3                   // keycap
           || (c >= 0xE0020 && c <= 0xE007F); // tags of subdivision flags
}

} // namespace

bool isEmojiCodePoint(char32_t c)
{
    return (c >= 0x1F000 && c <= 0x1FAFF)  // mahjong to symbols and pictographs extended-A, flags, skin tones
           || (c >= 0x2600 && c <= 0x27BF) // miscellaneous symbols and dingbats
           || (c >= 0x2300 && c <= 0x23FF) // watch, hourglass, alarm clock
           || (c >= 0x2B05 && c <= 0x2B55) // arrows, star, circle
           || (c >= 0x2194 && c <= 0x21AA) // arrows that take emoji presentation
           || c == 0x3030 || c == 0x303D || c == 0x3297 || c == 0x3299;
}

std::vector<TextRange> findEmojiRuns(const QString &text, const TextRange &range)
{
    std::vector<TextRange> runs;
    const qsizetype end = qMin(range.end(), text.size());
    qsizetype runStart = -1;
    qsizetype i = qMax<qsizetype>(0, range.location);
    const QChar *data = text.constData();
    while (i < end) {
        char32_t c = data[i].unicode();
        // Almost all of a note is text below the first emoji block: skip it cheaply.
        if (c < 0x200D) {
            if (runStart >= 0) {
                runs.push_back({runStart, i - runStart});
                runStart = -1;
            }
            ++i;
            continue;
        }
        qsizetype width = 1;
        if (QChar::isHighSurrogate(c) && i + 1 < end && data[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(data[i], data[i + 1]);
            width = 2;
        }
        if (isEmojiCodePoint(c) || (runStart >= 0 && isEmojiContinuation(c))) {
            if (runStart < 0)
                runStart = i;
        } else if (runStart >= 0) {
            runs.push_back({runStart, i - runStart});
            runStart = -1;
        }
        i += width;
    }
    if (runStart >= 0)
        runs.push_back({runStart, end - runStart});
    return runs;
}

} // namespace scrivlet
