#include "MathWorkload.h"

#include <QString>

#include <cstdint>

namespace scrivlet::bench {

namespace {

// A small linear congruential generator: the same lines on every machine and library
// version, which std::uniform_int_distribution does not promise.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_state(seed) {}

    int below(int bound)
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return int((m_state >> 33) % std::uint64_t(bound));
    }
    bool chance(int percent) { return below(100) < percent; }

    // Amounts as people write them: mostly whole, some with cents or one decimal.
    QString amount()
    {
        const int whole = below(5) == 0 ? below(10000) : below(200);
        switch (below(4)) {
        case 0:
            return QString::number(whole) + u'.' + QString::number(below(100)).rightJustified(2, u'0');
        case 1:
            return QString::number(whole) + u'.' + QString::number(below(10));
        default:
            return QString::number(whole + 1);
        }
    }
    QString small() { return QString::number(below(12) + 1); }
    QString percent() { return QString::number(below(6) == 0 ? below(100) + 0.5 : below(60) + 1); }
    QString op()
    {
        static const char16_t ops[] = {u'+', u'-', u'*', u'/'};
        return QString(QChar(ops[below(4)]));
    }

private:
    std::uint64_t m_state;
};

QString arithmetic(Dice &d)
{
    switch (d.below(4)) {
    case 0:
        return u'(' + d.amount() + u" + " + d.amount() + u") * " + d.small() + u" - " + d.amount() + u" / " + d.small();
    case 1:
        return d.amount() + u' ' + d.op() + u' ' + d.amount() + u' ' + d.op() + u" (" + d.amount() + u" - " +
               d.small() + u')';
    case 2:
        return u"((" + d.amount() + u" - " + d.small() + u") / " + d.small() + u" + " + d.amount() + u") * " +
               d.small();
    default:
        return u'-' + d.amount() + u" + " + d.amount() + u" * " + d.small();
    }
}

QString power(Dice &d)
{
    switch (d.below(4)) {
    case 0:
        return d.small() + u"^2 + " + d.small() + u"^3";
    case 1:
        return u'(' + d.amount() + u" + " + d.small() + u")^2";
    case 2:
        return u"2^" + d.small() + u" - 1";
    default:
        return d.amount() + u" * (1 + " + d.small() + u"/100)^" + d.small();
    }
}

QString function(Dice &d)
{
    switch (d.below(8)) {
    case 0:
        return u"sqrt(" + d.amount() + u") + " + d.small();
    case 1:
        return u"sin(" + d.small() + u")^2 + cos(" + d.small() + u")^2";
    case 2:
        return u"abs(" + d.small() + u" - " + d.amount() + u") / " + d.small();
    case 3:
        return u"round(" + d.amount() + u" / " + d.small() + u')';
    case 4:
        return u"floor(" + d.amount() + u") + ceil(" + d.amount() + u')';
    case 5:
        return u"tan(" + d.small() + u" / 10) * " + d.amount();
    case 6:
        return u"sqrt(" + d.small() + u"^2 + " + d.small() + u"^2)";
    default:
        return u"log(" + d.amount() + u") * " + d.small(); // base 10 here, natural elsewhere
    }
}

QString percentage(Dice &d)
{
    switch (d.below(4)) {
    case 0:
        return d.amount() + u" + " + d.percent() + u'%';
    case 1:
        return d.amount() + u" - " + d.percent() + u'%';
    case 2:
        return d.amount() + u" * " + d.percent() + u'%';
    default:
        return u'(' + d.amount() + u" + " + d.amount() + u") * " + d.percent() + u'%';
    }
}

QString implicitProduct(Dice &d)
{
    switch (d.below(3)) {
    case 0:
        return d.small() + u'(' + d.amount() + u" + " + d.small() + u')';
    case 1:
        return u'(' + d.small() + u" + " + d.small() + u")(" + d.amount() + u" - " + d.small() + u')';
    default:
        return d.small() + u" sqrt(" + d.amount() + u')';
    }
}

QString longSum(Dice &d)
{
    QString line = d.amount();
    const int terms = 15 + d.below(25);
    for (int i = 1; i < terms; ++i)
        line += (d.chance(85) ? QStringLiteral(" + ") : QStringLiteral(" - ")) + d.amount();
    return line;
}

// Lines in the program's own dialect, which general-purpose engines read differently or
// not at all.
QString dialect(Dice &d)
{
    switch (d.below(5)) {
    case 0:
        return u'$' + QString::number(d.below(9) + 1) + u',' + QString::number(d.below(900) + 100) + u" + " +
               d.percent() + u'%';
    case 1:
        return d.small() + u" x " + d.amount();
    case 2:
        return d.percent() + u"% of " + d.amount();
    case 3:
        return d.amount() + u" € * " + d.small();
    default:
        return d.small() + u"² + " + d.small() + u'³';
    }
}

} // namespace

QStringList mathWorkload(int lineCount)
{
    Dice dice(20240229);
    QStringList lines;
    lines.reserve(lineCount);
    for (int i = 0; i < lineCount; ++i) {
        const int kind = dice.below(100);
        if (kind < 22)
            lines << arithmetic(dice);
        else if (kind < 34)
            lines << power(dice);
        else if (kind < 50)
            lines << function(dice);
        else if (kind < 66)
            lines << percentage(dice);
        else if (kind < 76)
            lines << implicitProduct(dice);
        else if (kind < 90)
            lines << longSum(dice);
        else
            lines << dialect(dice);
    }
    return lines;
}

} // namespace scrivlet::bench
