#!/usr/bin/env python3
"""Tests include_graph.py on small made-up trees."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).with_name("include_graph.py")


class IncludeGraph(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, path, text=""):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text)

    def check(self):
        done = subprocess.run([sys.executable, CHECK, self.root], stdout=subprocess.PIPE, text=True, check=False)
        return done.returncode, done.stdout

    def expect_fault(self, *words):
        status, output = self.check()
        self.assertEqual(status, 1, output)
        for word in words:
            self.assertIn(word, output)

    def expect_none(self):
        status, output = self.check()
        self.assertEqual(status, 0, output)

    def test_an_upward_include_is_told_with_file_line_and_reason(self):
        self.write("libs/lnx/src/cmsg.h")
        self.write("libs/zyl/post.cpp", '#include <mutex>\n\n#include "lnx/src/cmsg.h"\n')
        self.expect_fault("libs/zyl/post.cpp:3:", "libs/lnx/src/cmsg.h", "may include itself, libs/zyl/log\n")

    def test_downward_includes_and_those_of_others_are_fine(self):
        self.write("libs/zyl/log/log_base.h", "#include <string>\n#include <spdlog/spdlog.h>\n")
        self.write("libs/control_lib/src/session.cpp", '#include "zyl/log/log_base.h"\n#include "moc_session.cpp"\n')
        self.expect_none()

    def test_angle_brackets_and_paths_from_the_root_hide_nothing(self):
        self.write("libs/control_lib/src/session.h")
        self.write("libs/lnx/src/cmsg.h", "# include <control_lib/src/session.h>\n")
        self.write("libs/lnx/src/poller.h", '  #include "libs/control_lib/src/session.h"\n')
        self.expect_fault("libs/lnx/src/cmsg.h:1:", "libs/lnx/src/poller.h:1:", "2 includes")

    def test_a_path_that_climbs_out_of_its_folder_is_seen_for_what_it_is(self):
        self.write("app/vgn_control.h")
        self.write("libs/vgn/src/system.cpp", '#include "../../../app/vgn_control.h"\n')
        self.expect_fault("libs/vgn/src/system.cpp:1:", "includes app/vgn_control.h")

    def test_libraries_of_one_level_do_not_know_each_other(self):
        self.write("libs/edid_lib/edid.h")
        self.write("libs/zyl/post.cpp", '#include "edid_lib/edid.h"\n')
        self.expect_fault("libs/zyl/post.cpp:1:")

    def test_the_inner_folder_of_a_library_is_a_level_of_its_own(self):
        self.write("libs/zyl/qt/property_monitor.h")
        self.write("libs/zyl/post.cpp", '#include "zyl/qt/property_monitor.h"\n')
        self.expect_fault("libs/zyl/post.cpp:1:")

    def test_the_control_protocol_stands_alone(self):
        self.write("libs/zyl/post.h")
        self.write("libs/control_comm/channel.h", '#include "zyl/post.h"\n')
        self.write("app/vgn_control.cpp", '#include "control_comm/channel.h"\n')
        self.expect_fault("libs/control_comm/channel.h:1:", "itself only", "app/vgn_control.cpp:1:")

    def test_only_tests_use_what_is_made_for_tests(self):
        self.write("test_support/fake_engine.h")
        self.write("libs/vgn/test/system_fixture.h", '#include "test_support/fake_engine.h"\n')
        self.write("libs/vgn/test/system_test.cpp", '#include "system_fixture.h"\n')
        self.expect_none()
        self.write("libs/vgn/src/system.cpp", '#include "test_support/fake_engine.h"\n')
        self.write("libs/vgn/src/device.cpp", '#include "../test/system_fixture.h"\n')
        self.expect_fault("libs/vgn/src/system.cpp:1:", "libs/vgn/src/device.cpp:1:", "2 includes")

    def test_a_librarys_tests_do_not_need_the_simulation(self):
        self.write("sim/story.h")
        self.write("libs/vgn/test/system_test.cpp", '#include "sim/story.h"\n')
        self.expect_fault("libs/vgn/test/system_test.cpp:1:")

    def test_a_tools_tests_may_run_it_against_the_simulation(self):
        self.write("sim/story.h")
        self.write("tools/vgnctl/test/property_test.cpp", '#include "sim/story.h"\n')
        self.expect_none()
        self.write("tools/vgnctl/main.cpp", '#include "sim/story.h"\n')
        self.expect_fault("tools/vgnctl/main.cpp:1:")

    def test_a_folder_without_a_level_is_told(self):
        self.write("libs/new_lib/thing.cpp")
        self.expect_fault("libs/new_lib/thing.cpp:1:", "no level")

    def test_a_tree_without_sources_is_no_success(self):
        self.expect_fault("0 sources")


if __name__ == "__main__":
    unittest.main()
