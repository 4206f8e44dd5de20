#pragma once
// The process-wide strings: the only variables the whole program shares.

#include <QString>

extern QString gConnStr;   // the connection profile, an ADO connection string
extern QString gServer;    // server name, for the status bar only
extern QString gDatabase;  // database name, for the status bar only
extern QString gUserName;  // the operator, as typed at login
extern QString gLoginName; // key of the password change

// Where the profile is kept, and what marks that none is.
extern const QString kSettingApp;     // "Orvane文献系统"
extern const QString kSettingSection; // "Setting"
extern const QString kSettingKey;     // "OrvanePass"
extern const QString kNoProfile;      // "NotExsists"
