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
#include <cstdio>
#include <functional>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Seconds of a call.
template <typename Call>
double timeOf(Call call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double medianOf(std::vector<double> times)
{
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size()) / 2, times.end());
    return times[times.size() / 2];
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

/// Seconds for a node, by what is done with its tree.
struct Costs
{
    double write;
    double read;
    double destroy;
};

/// Does the work in a process of its own: what earlier work has left of the heap does not count.
Costs inFreshProcess(const std::function<Costs()>& work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0) {
        const Costs costs = work();
        _exit(write(ends[1], &costs, sizeof costs) == sizeof costs ? 0 : 1);
    }
    close(ends[1]);
    Costs costs{};
    if (read(ends[0], &costs, sizeof costs) != sizeof costs)
        std::fprintf(stderr, "a measurement ended early\n");
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return costs;
}

Costs costsOfOne(const QString& dir, int nodes, bool isNested)
{
    QString path = dir + "tree.xml";
    TVNC_XMLNode* const made = makeTree(nodes, isNested);
    Costs costs{};
    costs.write = timeOf([&] { TVNC_XMLWriter().write(path, made); }) / nodes;
    TVNC_XMLNode* root = nullptr;
    costs.read = timeOf([&] { root = TVNC_XMLReader().read(path); }) / nodes;
    costs.destroy = timeOf([&] { delete root; }) / nodes;
    return costs;
}

Costs costsOf(const QString& dir, int nodes, bool isNested)
{
    std::vector<double> write;
    std::vector<double> read;
    std::vector<double> destroy;
    for (int i = std::max(11, 50000 / nodes); i > 0; --i) {
        const Costs costs = inFreshProcess([&] { return costsOfOne(dir, nodes, isNested); });
        write.push_back(costs.write);
        read.push_back(costs.read);
        destroy.push_back(costs.destroy);
    }
    return {medianOf(write), medianOf(read), medianOf(destroy)};
}

void addTrees(const QString& dir, bool isNested)
{
    const std::string shape = isNested ? "nested" : "flat";
    const Costs small = costsOf(dir, 1000, isNested);
    for (const int nodes : {10000, 100000, 1000000}) {
        const Costs costs = costsOf(dir, nodes, isNested);
        const std::string behind = ' ' + std::to_string(nodes) + ' ' + shape + " nodes, per node of 1000";
        addRatio("write" + behind, "tlvlib", costs.write / small.write);
        addRatio("read" + behind, "tlvlib", costs.read / small.read);
        addRatio("destroy" + behind, "tlvlib", costs.destroy / small.destroy);
        for (const char* what : {"write", "read", "destroy"})
            addTarget(what + behind, 1.5);
    }
}

double fontCost(const QString& parent, int count)
{
    const QString dir = parent + "fonts" + QString::number(count) + '/';
    QDir().mkpath(dir);
    QFile file(dir + "fontlist.xml");
    if (!file.open(QIODevice::WriteOnly))
        return 0;
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fontlist docInfo=\"1.0\">\n");
    for (int i = 0; i < count; ++i)
        file.write(
            QString("    <font id=\"%1\">Family number %2 Sans</font>\n").arg(numberOf(i)).arg(i).toUtf8());
    file.write("</fontlist>\n");
    file.close();
    std::vector<double> times;
    for (int i = 0; i < 11; ++i)
        times.push_back(inFreshProcess([&] {
                            return Costs{0, timeOf([&] { loadStore(FONTS, dir); }), 0};
                        }).read);
    return medianOf(times) / count;
}

} // namespace

void addGrowth(const QString& dir)
{
    addTrees(dir, false);
    addTrees(dir, true);
    const double small = fontCost(dir, 1000);
    for (const int count : {10000, 100000}) {
        const std::string row = "load " + std::to_string(count) + " fonts, per font of 1000";
        addRatio(row, "tlvlib", fontCost(dir, count) / small);
        addTarget(row, 1.5);
    }
}
