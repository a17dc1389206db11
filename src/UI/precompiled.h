#pragma once

#include "Core/precompiled.h"

#include <QApplication>
#include <QGuiApplication>
#include <QImage>
#include <QObject>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>
