# Turns a hosts file (panel<TAB>button<TAB>host a line, "*<TAB>*<TAB>host"
# for every row not listed, "#" for comments) into the C++ table behind
# catalogue::stationHost(). Run with -DHOSTS=<file> -DOUTPUT=<file.cpp>.
file(STRINGS "${HOSTS}" lines ENCODING UTF-8)
set(rows "")
set(fallback "stations.invalid")
set(n 0)
foreach(line IN LISTS lines)
  math(EXPR n "${n} + 1")
  string(STRIP "${line}" stripped)
  if(stripped STREQUAL "" OR stripped MATCHES "^#")
    continue()
  endif()
  if(line MATCHES "[\";\\\\]")
    message(FATAL_ERROR "${HOSTS}:${n}: quotes, semicolons and backslashes are not allowed")
  endif()
  string(REPLACE "\t" ";" parts "${line}")
  list(LENGTH parts count)
  if(NOT count EQUAL 3)
    message(FATAL_ERROR "${HOSTS}:${n}: expected panel<TAB>button<TAB>host")
  endif()
  list(GET parts 0 panel)
  list(GET parts 1 button)
  list(GET parts 2 host)
  string(STRIP "${host}" host)
  if(panel STREQUAL "*" AND button STREQUAL "*")
    set(fallback "${host}")
  else()
    string(APPEND rows "    {\"${panel}\", \"${button}\", \"${host}\"},\n")
  endif()
endforeach()

set(text "// Generated from ${HOSTS} at build time. Do not edit.
#include \"catalogue/StationHosts.h\"

#include <iterator>

namespace {
struct HostRow {
    const char *panel;
    const char *button;
    const char *host;
};
const HostRow kHosts[] = {
${rows}    {nullptr, nullptr, nullptr},
};
const char kFallback[] = \"${fallback}\";
} // namespace

QString catalogue::stationHost(const QString &panel, const QString &button)
{
    for (const HostRow *r = std::begin(kHosts); r->panel; ++r)
        if (panel == QLatin1String(r->panel) && button == QLatin1String(r->button))
            return QString::fromUtf8(r->host);
    return QString::fromUtf8(kFallback);
}
")
# Rewrite only on change, so an unchanged hosts file rebuilds nothing.
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" old)
  if(old STREQUAL text)
    return()
  endif()
endif()
file(WRITE "${OUTPUT}" "${text}")
