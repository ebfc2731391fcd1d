// Style sheets compared with a reader that uses indexOf(), and columns of tables with the scaling pass alone.

#include "support.h"

#include <support/InstallationTree.h>
#include <ui/StyleSheet.h>
#include <ui/TableView.h>

#include <QCoreApplication>
#include <QFile>

#include <cmath>

namespace {

using Bench::Require;
using Bench::SRow;

constexpr int KILO = 1024;
constexpr int FILE_KILO = 20; // of each included file

// Writes a theme of the given size, all of it in files that one sheet includes, and returns the sheet's path.
QString WriteSheet(const CInstallationTree &tree, int kilobytes, bool broken)
{
    QByteArray file;
    for (int rule = 0; file.size() < FILE_KILO * KILO; ++rule) {
        const QByteArray number = QByteArray::number(rule);
        file += "/* rule " + number + " */\nQLabel#LB_" + number + ", QFrame#F_" + number +
                " {\n    color: #123456;\n    background-image: url(./pictures/" + number +
                ".png); margin: 2px\n}\n\n";
    }
    const QString folder = QStringLiteral("Resources/theme%1/").arg(kilobytes);
    tree.WriteFile(folder + QStringLiteral("common/part.css"), file);
    QByteArray sheet;
    for (int part = 0; part < kilobytes / FILE_KILO; ++part)
        sheet += "#include \"common/part.css\";\n";
    sheet += "QWidget { color: black }\n";
    if (broken)
        sheet += "/* QWidget { color: black }\n";
    return tree.WriteFile(folder + (broken ? QStringLiteral("broken.css") : QStringLiteral("style.css")), sheet);
}

// Removes comments; returns false if one isn't closed.
bool RemoveComments(const QString &text, QString &rest)
{
    QString::size_type from = 0;
    for (QString::size_type begin = 0; (begin = text.indexOf(QLatin1String("/*"), from)) >= 0;) {
        const auto end = text.indexOf(QLatin1String("*/"), begin);
        if (end < 0)
            return false;
        rest.append(text.constData() + from, begin - from);
        from = end + 2;
    }
    rest.append(text.constData() + from, text.size() - from);
    return true;
}

// A reader for sheets in exactly this format.
bool ReadByHand(const QString &path, QString &contents)
{
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), "a sheet's file");
    const QString text = QString::fromUtf8(file.readAll());
    const QString folder = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    QString lines;
    const auto add = [&lines](QStringView piece) { lines.append(piece.data(), static_cast<int>(piece.size())); };
    for (QString::size_type from = 0, end = 0; (end = text.indexOf(QLatin1Char('\n'), from)) >= 0; from = end + 1) {
        const QStringView line = QStringView(text).mid(from, end - from).trimmed();
        if (line.startsWith(QLatin1String("#include"))) {
            const auto quote = line.indexOf(QLatin1Char('"')) + 1;
            const QStringView name = line.mid(quote, line.indexOf(QLatin1Char('"'), quote) - quote);
            if (!ReadByHand(folder + name.toString(), lines))
                return false;
        } else if (!line.isEmpty()) {
            const auto dots = line.indexOf(QLatin1String("./"));
            if (dots >= 0) {
                add(line.left(dots));
                lines += folder;
            }
            add(line.mid(qMax<qsizetype>(0, dots)));
            lines += QLatin1Char('\n');
        }
    }
    return RemoveComments(lines, contents);
}

// Adds a side that returns what was read, or that it failed.
void AddSheetSide(SRow<QString> &row, const char *side, const QString &path, bool (*read)(const QString &, QString &))
{
    row.Side(side, [&path, read](int) {
        QString contents;
        return read(path, contents) ? contents : QStringLiteral("broken");
    });
}

void AddSheetRow(const CInstallationTree &tree, const char *name, bool broken, const std::vector<int> &sizes)
{
    static QString path;
    const auto write = [&tree, broken](int kilobytes) {
        path = WriteSheet(tree, kilobytes, broken);
        QString contents;
        Require(ReadByHand(path, contents) != broken, "the sheet");
    };
    SRow<QString> row{name, sizes, write};
    AddSheetSide(row, "library", path, Globals::GetCssContents);
    AddSheetSide(row, "floor", path, ReadByHand);
}

// Does the scaling pass alone: the first columns get the remaining pixels.
QList<double> ScaleByHand(double width, const QList<double> &sizes)
{
    double total = 0;
    for (const double size : sizes)
        total += size;
    QList<double> widths;
    widths.reserve(sizes.size());
    double left = width;
    for (const double size : sizes) {
        widths.append(std::floor(size * width / total));
        left -= widths.last();
    }
    for (double &size : widths) {
        if (left < 1)
            break;
        size += 1;
        left -= 1;
    }
    return widths;
}

void AddColumnRow(const char *name, const std::vector<int> &ns, int (*columns)(int), double (*width)(int))
{
    static QList<double> sizes;
    const auto make = [columns](int n) {
        sizes.clear();
        for (int column = 0; column < columns(n); ++column)
            sizes.append(64 * (1 + column % 4));
    };
    SRow<QList<double>> row{name, ns, make};
    row.Side("library", [width](int n) { return TableView::Recalculate(width(n), sizes, sizes, -1); });
    row.Side("floor", [width](int n) { return ScaleByHand(width(n), sizes); });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const CInstallationTree tree;
    AddSheetRow(tree, "sheet", false, {20, 200, 1000, 5000});
    AddSheetRow(tree, "sheet_broken", true, {200, 5000});
    AddColumnRow(
        "columns", {10, 100, 1000, 10000}, [](int n) { return n; }, [](int n) { return n * 120.0 + 7; });
    AddColumnRow(
        "columns_width", {13, 17, 21, 25, 29}, [](int) { return 100; }, [](int n) { return std::exp2(n); });
    return Bench::RunRows(argc, argv);
}
