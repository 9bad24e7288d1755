// SPDX-License-Identifier: MIT
#include "app/UpdateAnswer.h"
#include "tests/fuzz/Fuzz.h"

#include <QUrl>

// The bytes are the answer of a web server.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray answer = Fuzz::bytes(data, size);
    QList<QByteArray> lines;
    for (decltype(answer.size()) start = 0; start < answer.size();) {
        const auto lineFeed = answer.indexOf('\n', start);
        const auto end = lineFeed < 0 ? answer.size() : lineFeed + 1;
        lines.append(answer.mid(start, end - start));
        start = end;
    }
    const std::optional<UpdateAnswer> read = UpdateAnswer::fromLines(lines);
    if (!read) {
        return 0;
    }
    Fuzz::require(lines.size() >= 2, "two lines");
    Fuzz::require(lines.at(0).contains("version"), "a version");
    Fuzz::require(lines.at(0).contains(" Build "), "a build");
    Fuzz::require(lines.at(1).contains('='), "an address");
    Fuzz::require(read->version.size() == 1 && read->build.size() == 1, "single characters");
    Fuzz::require(!read->url.contains(QLatin1Char('\n')), "an address in one line");
    // The address goes to a browser.
    QUrl(read->url).isValid();
    return 0;
}
