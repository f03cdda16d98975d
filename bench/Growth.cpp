#include "bench/Measurement.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QDir>

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace {

const double MOST_GROWTH = 1.5;

/// Seconds of a call.
template <typename Call>
double timeOf(Call call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A tree of so many nodes: all under the root, or each under the one before.
TVNC_XMLNode* makeTree(int nodes, bool isNested)
{
    auto* root = new TVNC_XMLNode(nullptr, 0);
    QString name = "node";
    root->setName(name);
    TVNC_XMLNode* parent = root;
    for (int i = 1; i < nodes; ++i) {
        auto* node = new TVNC_XMLNode(parent, 0);
        node->setName(name);
        QString text = isNested ? QString() : QString("text %1").arg(i);
        node->setText(text);
        if (isNested)
            parent = node;
    }
    return root;
}

const char* const COSTS[] = {"write", "read", "destroy"};

/// Seconds for a node, in the order of COSTS.
std::vector<double> costsOfTree(const QString& dir, int nodes, bool isNested)
{
    return inFreshProcess([&] {
        QString path = dir + "tree.xml";
        TVNC_XMLNode* const made = makeTree(nodes, isNested);
        const double write = timeOf([&] { TVNC_XMLWriter().write(path, made); });
        TVNC_XMLNode* root = nullptr;
        const double read = timeOf([&] { root = TVNC_XMLReader().read(path); });
        const double destroy = timeOf([&] { delete root; });
        return std::vector<double>{write / nodes, read / nodes, destroy / nodes};
    });
}

void makeFonts(const QString& dir, int count)
{
    QDir().mkpath(dir);
    QFile file(dir + "fontlist.xml");
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fontlist docInfo=\"1.0\">\n");
    for (int i = 0; i < count; ++i)
        file.write(
            QString("    <font id=\"%1\">Family number %2 Sans</font>\n").arg(numberOf(i)).arg(i).toUtf8());
    file.write("</fontlist>\n");
}

/// Seconds for a font.
std::vector<double> costOfFonts(const QString& parent, int count)
{
    const QString dir = parent + "fonts" + QString::number(count) + '/';
    if (!QDir(dir).exists())
        makeFonts(dir, count);
    return inFreshProcess(
        [&] { return std::vector<double>{timeOf([&] { loadStore(FONTS, dir); }) / count}; });
}

/**
 * How much more one of many costs than one of 1000. The sizes take turns: a machine is not equally fast all
 * the time.
 *
 * @param costs the costs of one, of so many
 * @return for each size the ratio of each cost
 */
std::vector<double> growthOf(const std::vector<int>& sizes,
                             const std::function<std::vector<double>(int)>& costs)
{
    return mediansOf(11, [&] {
        const std::vector<double> small = mediansOf(5, [&] { return costs(1000); });
        std::vector<double> ratios;
        for (const int size : sizes) {
            const std::vector<double> large = costs(size);
            for (size_t i = 0; i < large.size(); ++i)
                ratios.push_back(large[i] / small[i]);
        }
        return ratios;
    });
}

void addTrees(const QString& dir, bool isNested)
{
    const std::vector<int> sizes{10000, 100000, 1000000};
    std::vector<std::string> rows;
    for (const int nodes : sizes) {
        for (const char* cost : COSTS)
            rows.push_back(std::string(cost) + ' ' + std::to_string(nodes) +
                           (isNested ? " nested" : " flat") + " nodes, per node of 1000");
    }
    addRatios(rows, MOST_GROWTH,
              [=] { return growthOf(sizes, [&](int nodes) { return costsOfTree(dir, nodes, isNested); }); });
}

} // namespace

void addGrowth(const QString& dir)
{
    addTrees(dir, false);
    addTrees(dir, true);
    const std::vector<int> sizes{10000, 100000};
    std::vector<std::string> rows;
    rows.reserve(sizes.size());
    for (const int count : sizes)
        rows.push_back("load " + std::to_string(count) + " fonts, per font of 1000");
    addRatios(rows, MOST_GROWTH,
              [=] { return growthOf(sizes, [&](int count) { return costOfFonts(dir, count); }); });
}
