#include <QCoreApplication>
#include <gtest/gtest.h>

// One main for every test program: the core runs on a Qt event loop, so tests get
// a QCoreApplication (QApplication where a test program links the views and says so).
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
