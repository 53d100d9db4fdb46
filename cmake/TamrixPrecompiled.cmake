# Precompiled headers: what most sources include of Qt, the standard library and GoogleTest is parsed
# once for each kind of target instead of once for each source. Nothing of ours is among it, so no
# change of ours makes everything new. That sources and headers stand alone is proved without them, by
# ./dev check headers tidy.

# The kinds, each compiled with what its users are compiled with.
set(precompiled_standard
    <algorithm> <array> <atomic> <cerrno> <cmath> <cstdint> <cstdio> <cstdlib> <cstring> <deque>
    <functional> <limits> <memory> <mutex> <optional> <stdexcept> <string> <utility> <vector>)
set(precompiled_core ${precompiled_standard}
    <QByteArray> <QCoreApplication> <QDataStream> <QDateTime> <QDir> <QElapsedTimer> <QFile> <QFileInfo>
    <QHash> <QList> <QMap> <QPair> <QPoint> <QPointer> <QRect> <QSaveFile> <QSet> <QSharedPointer>
    <QSize> <QString> <QStringList> <QVariant> <QVector>)
set(precompiled_gui ${precompiled_core} <QGuiApplication> <QImage> <QPixmap> <QWindow>)
set(precompiled_tests ${precompiled_core} <QTemporaryDir> <gmock/gmock.h> <gtest/gtest.h>)

# tamrix_precompiled(KIND [QT6] LINK target...)
#   The target tamrix-precompiled-KIND that others reuse; QT6: once more for Qt 6, of the kind KIND-qt6.
function(tamrix_precompiled kind)
    cmake_parse_arguments(ARG "QT6" "" "LINK" ${ARGN})
    if(ARG_QT6 AND TAMRIX_QT6)
        tamrix_for_qt6(link ${ARG_LINK})
        tamrix_precompiled(${kind}-qt6 LINK ${link})
    endif()
    string(REGEX REPLACE "-qt6$" "" headers ${kind})
    set(source ${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(tamrix-precompiled-${kind} OBJECT ${source})
    target_link_libraries(tamrix-precompiled-${kind} PRIVATE ${ARG_LINK} tamrix-compiler)
    target_precompile_headers(tamrix-precompiled-${kind} PRIVATE ${precompiled_${headers}})
endfunction()

# tamrix_reuse_precompiled(NAME KIND): compiles the target NAME with the headers of KIND.
function(tamrix_reuse_precompiled name kind)
    target_precompile_headers(${name} REUSE_FROM tamrix-precompiled-${kind})
endfunction()

# tamrix_precompile_folder(NAME LINK target...): the kind that fits what a folder is linked with.
function(tamrix_precompile_folder name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    foreach(qt Qt5 Qt6)
        set(suffix "")
        if(qt STREQUAL Qt6)
            set(suffix -qt6)
        endif()
        if("${qt}::Gui" IN_LIST ARG_LINK OR "${qt}::Widgets" IN_LIST ARG_LINK)
            tamrix_reuse_precompiled(${name} gui${suffix})
        elseif("${qt}::Core" IN_LIST ARG_LINK)
            tamrix_reuse_precompiled(${name} core${suffix})
        endif()
    endforeach()
endfunction()
