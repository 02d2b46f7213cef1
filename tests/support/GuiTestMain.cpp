#include <QApplication>
#include <gtest/gtest.h>

// Widget tests need a QApplication; they run on the offscreen platform unless the
// environment names another.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
