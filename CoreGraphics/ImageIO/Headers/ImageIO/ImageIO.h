/* ImageIO.h: the whole interface of image files. */
#pragma once

#include <ImageIO/CGImageDestination.h>
#include <ImageIO/CGImageProperties.h>
#include <ImageIO/CGImageSource.h>
#include <ImageIO/ImageIOBase.h>
