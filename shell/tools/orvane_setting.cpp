// orvane-setting: the client's connection profile in its own settings store, for scripts.
//   orvane-setting get                    prints the profile ("NotExsists" when none)
//   orvane-setting set-if-missing VALUE   stores VALUE only when no profile is stored
#include "data/globals.h"
#include "platform/runtime.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const auto profile = [] {
        return vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile);
    };
    if (argc == 2 && std::strcmp(argv[1], "get") == 0) {
        std::printf("%s\n", profile().toUtf8().constData());
        return 0;
    }
    if (argc == 3 && std::strcmp(argv[1], "set-if-missing") == 0) {
        if (profile() != kNoProfile) {
            std::printf("kept\n");
            return 0;
        }
        vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, QString::fromLocal8Bit(argv[2]));
        std::printf("stored\n");
        return 0;
    }
    std::fprintf(stderr, "usage: orvane-setting get | set-if-missing PROFILE\n");
    return 2;
}
