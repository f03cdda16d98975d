#include "tools/tlvctl/commandline/Table.h"

#include "tools/tlvctl/commandline/Console.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

const int GAP = 2;              ///< blanks between columns
const int NARROWEST_COLUMN = 8; ///< no column is cut to less
const int WIDEST_PADDING = 60;  ///< in a file; one huge cell must not make every line as long

/// The width of the terminal; nothing where standard output is none or does not tell.
std::optional<int> lineWidth()
{
    winsize size;
    if (!isatty(STDOUT_FILENO) || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return std::nullopt;
    return size.ws_col;
}

bool isWide(uint codePoint)
{
    static const struct
    {
        uint first;
        uint last;
    } RANGES[] = {{0x1100, 0x115F},   {0x2329, 0x232A},  {0x2E80, 0x303E},   {0x3040, 0xA4CF},
                  {0xA960, 0xA97F},   {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},
                  {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
                  {0x1F900, 0x1FAFF}, {0x20000, 0x3FFFD}};
    return std::any_of(std::begin(RANGES), std::end(RANGES), [codePoint](const auto& range) {
        return codePoint >= range.first && codePoint <= range.last;
    });
}

int widthOf(uint codePoint)
{
    const QChar::Category category = QChar::category(codePoint);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    return isWide(codePoint) ? 2 : 1;
}

} // namespace

int displayWidth(const QString& text)
{
    const QVector<uint> codePoints = text.toUcs4();
    return std::accumulate(codePoints.begin(), codePoints.end(), 0,
                           [](int width, uint codePoint) { return width + widthOf(codePoint); });
}

QString cutToWidth(const QString& text, int width)
{
    if (displayWidth(text) <= width)
        return text;
    QString cut;
    int used = 1; // the mark at the end
    for (const uint codePoint : text.toUcs4()) {
        used += widthOf(codePoint);
        if (used > width)
            break;
        const char32_t character = codePoint;
        cut += QString::fromUcs4(&character, 1);
    }
    return cut + QChar(0x2026);
}

Table::Table(const QStringList& header) : rows_{header} {}

void Table::addRow(const QStringList& cells)
{
    rows_.push_back(cells);
}

/// The natural widths, with the widest columns narrowed until a line takes no more than @a lineWidth.
std::vector<int> Table::columnWidths(int lineWidth) const
{
    std::vector<int> widths = naturalWidths();
    const int gaps = GAP * (static_cast<int>(widths.size()) - 1);
    qint64 surplus = std::accumulate(widths.begin(), widths.end(), qint64(gaps)) - lineWidth;
    while (surplus > 0) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= NARROWEST_COLUMN)
            break;
        // Down to the next widest column at once: a cell may have millions of characters.
        int next = NARROWEST_COLUMN;
        for (auto width = widths.begin(); width != widths.end(); ++width) {
            if (width != widest)
                next = std::max(next, *width);
        }
        const int cut = static_cast<int>(std::min<qint64>(surplus, std::max(1, *widest - next)));
        *widest -= cut;
        surplus -= cut;
    }
    return widths;
}

std::vector<int> Table::naturalWidths() const
{
    std::vector<int> widths(static_cast<size_t>(rows_.front().size()), 0);
    for (const QStringList& row : rows_) {
        for (size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(row.at(static_cast<int>(i))));
    }
    return widths;
}

void Table::print() const
{
    if (rows_.size() < 2)
        return;
    const std::optional<int> terminal = lineWidth();
    const std::vector<int> widths = terminal ? columnWidths(*terminal) : naturalWidths();
    for (const QStringList& row : rows_) {
        QString line;
        int padding = 0; // only written in front of a cell that shows something
        for (size_t i = 0; i < widths.size(); ++i) {
            const QString& whole = row.at(static_cast<int>(i));
            const QString cell = terminal ? cutToWidth(whole, widths[i]) : whole;
            if (!cell.isEmpty()) {
                line += QString(padding, ' ') + cell;
                padding = 0;
            }
            const int column = terminal ? widths[i] : std::min(widths[i], WIDEST_PADDING);
            padding += std::max(0, column - displayWidth(cell)) + GAP;
        }
        printLine(line);
    }
}
