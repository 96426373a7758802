SUMMARY = "Runtime library for embedded network devices"
DESCRIPTION = "Value types, reference-counted objects, lists, callbacks, files and a TFTP read client."
SECTION = "libs"
# No licence has been granted yet.
LICENSE = "CLOSED"

inherit cmake externalsrc

# The sources around this layer.
EXTERNALSRC ?= "${THISDIR}/../../../../.."
EXTERNALSRC_BUILD = "${WORKDIR}/build"

PACKAGECONFIG ??= "comfort tools"
PACKAGECONFIG[comfort] = "-DTQ_BUILD_COMFORT=ON,-DTQ_BUILD_COMFORT=OFF"
PACKAGECONFIG[tools] = "-DTQ_BUILD_TOOLS=ON,-DTQ_BUILD_TOOLS=OFF"

EXTRA_OECMAKE = "-DTQ_BUILD_TESTS=OFF -DTQ_BUILD_EXAMPLES=OFF -DCMAKE_SKIP_INSTALL_RPATH=ON"

PACKAGES =+ "${PN}-comfort ${PN}-tools"
FILES:${PN}-comfort = "${libdir}/libtqcomfort.so.* ${libdir}/libtqreports.so"
FILES:${PN}-tools = "${bindir} ${datadir}/bash-completion ${datadir}/fish ${datadir}/zsh"
FILES:${PN}-dev += "${datadir}/gdb ${datadir}/tqcommon"
# Loaded by its name and not linked with, it is no development file.
INSANE_SKIP:${PN}-comfort = "dev-so"
SUMMARY:${PN}-comfort = "${SUMMARY}, comforts that need code"
SUMMARY:${PN}-tools = "${SUMMARY}, tools"

BBCLASSEXTEND = "native nativesdk"
