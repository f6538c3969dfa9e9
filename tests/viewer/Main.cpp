#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false); // dialogs of later tests would end at once
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
