#pragma once
// modMain: the entry procedure of the client.
//
// Main refuses a second instance, reads the connection profile into gConnStr, offers
// the connection dialog when none is stored, and shows the login modally. It returns when
// the login form is gone; a good login leaves Mainfrm on the screen to carry the process.

#include <QString>

void Main();

// Cuts the display names out of a profile into gServer and gDatabase, item by item.
void readProfileNames(const QString& profile);

// The name under which Main claims the single instance (tests use their own).
void setInstanceKey(const QString& key);
QString instanceKey();
