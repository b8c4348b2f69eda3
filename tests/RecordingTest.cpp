#include "Recording.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace Kiv;

namespace {

Animation read(const std::string& text) {
    const std::string path = testing::TempDir() + "recording";
    std::ofstream(path, std::ios::binary) << text;
    return read_recording(path);
}

TEST(RecordingTest, IsReadAndWrittenWithoutLoss) {
    const struct {
        std::string text, layers, written;
    } rows[] = {
        // a value that stays; a last line of values without milliseconds
        {"1 7,0\n40\n1 7,255\n10\n1 7,0\n", "0001.001: H7:51; 0001.002: H0:40 H255:10 H0:1",
         "1 7,0\n40\n1 7,255\n10\n1 7,0\n1\n"},
        // universes in turn, CR LF, a comma at the end, fewer values
        {"2 1,2,3,\r\n0\r\n1 4\r\n20\r\n2 5\r\n0\r\n1 4\r\n30\r\n",
         "0001.001: H4:50; 0002.001: H1:20 H5:30; 0002.002: H2:20 N:30; 0002.003: H3:20 N:30",
         "1 4\n0\n2 1,2,3\n20\n2 5\n30\n"},
        // a universe that begins later, and is silent in between; the greatest one comes last
        {"4294967295 1\n5\n10000 2\n5\n10000 \n5\n10000 2\n5",
         ":0000010000.001: N:5 H2:5 N:5 H2:5; :4294967295.001: H1:20",
         "10000 \n0\n4294967295 1\n5\n10000 2\n5\n10000 \n5\n10000 2\n5\n"},
        // what lasts for no time
        {"1 1\n9\n1 2\n0\n1 1\n9\n1 3\n0", "0001.001: H1:18 H3:1", "1 1\n18\n1 3\n1\n"},
        {"", "", ""},
    };
    for (const auto& row : rows) {
        const Animation show = read("OLA Show\n" + row.text);
        EXPECT_EQ(show.layers, animation(row.layers).layers);
        EXPECT_EQ(show.fps, 1000);
        std::ostringstream written;
        write_recording(written, show);
        EXPECT_EQ(written.str(), "OLA Show\n" + row.written);
        EXPECT_EQ(read(written.str()), show) << row.text;
    }
}

} // namespace
