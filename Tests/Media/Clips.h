#pragma once

#include "RecordCore/Media/VideoReader.h"

#include <array>
#include <filesystem>
#include <string>
#include <vector>

/// Runs the ffmpeg program with these arguments; throws when it fails.
void ffmpeg(const std::string& arguments);

/// What ffprobe prints for these arguments (compact values, one line each).
std::string ffprobe(const std::string& arguments);

/// Mean Y, Cb and Cr of a square patch around a place given as a fraction of the picture.
std::array<double, 3> patch(const RecordCore::PlanarView& picture, double x, double y);

/// Y, Cb and Cr of an 8-bit R'G'B' colour in BT.709, video range (ITU-R BT.709, 3.4).
std::array<double, 3> bt709(double red, double green, double blue);

/// All frame times of a reader, from where it stands to the end.
std::vector<double> restOfTimes(RecordCore::VideoReader& reader);

/// A number that two pictures share only when they are equal to the byte.
std::uint64_t fingerprint(const RecordCore::PlanarView& picture);
