#include "Platform/Linux/Wayland/LayerShellOffer.h"

#include "Wayland/compositor.h"

#include <QLocalServer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Another compositor than that of these tests, for a while.
class LayerShellOffer : public testing::Test {
protected:
    ~LayerShellOffer() override { qputenv("WAYLAND_DISPLAY", before); }

    void useCompositorAt(const QString &socket) { qputenv("WAYLAND_DISPLAY", socket.toLocal8Bit()); }

    QTemporaryDir folder;
    QByteArray before = qgetenv("WAYLAND_DISPLAY");
};

TEST_F(LayerShellOffer, is_seen_where_there_is_one) {
    EXPECT_TRUE(wayland::offersLayerShell());
}

TEST_F(LayerShellOffer, a_compositor_that_is_not_there_has_none) {
    useCompositorAt(folder.filePath(QStringLiteral("nothing")));
    EXPECT_FALSE(wayland::offersLayerShell());
}

TEST_F(LayerShellOffer, a_compositor_that_never_answers_has_none) {
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(folder.filePath(QStringLiteral("silent"))));
    useCompositorAt(silent.fullServerName());
    EXPECT_FALSE(wayland::offersLayerShell());
}

} // namespace

} // namespace pavonel::test
