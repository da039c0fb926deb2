#include "tools/vgnctl/status/status_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <vector>

#include "tools/vgnctl/status/status_items.h"
#include "tools/vgnctl/status/status_text.h"
#include "zyl/exceptions.h"

namespace vgnctl {
namespace {

// Help keeps to the 80 columns of a plain terminal.

constexpr const char* status_footer = R"(Output:
  A line an item: name, value and unit; "not available" for what this machine
  does not tell, or does not let you read: the KTM5030 tells only who may also
  write to its device. Nothing is changed on the hardware.
  With --json one object with the names as keys; null for what is not available.

  board_temperature_a, board_temperature_b  two places of the board, in °C
  pl_temperature, ps_temperature            programmable logic and processing
                                            system of the processor, in °C
  vccaux14_a, vccaux14_b, vccaux15          voltages, in V; the first two are
                                            one input by two scales
  fan_speed                                 in turns a minute
  fan_pwm, fan_ramp_rate                    power of the fan and how quickly it
                                            follows, of 255
  power_source                              0 no supply known, 1 the auxiliary
                                            supply, 2 power over Ethernet (PoE)
                                            below class 4, 3 of class 4, 4 of
                                            class 5 or more
  aux_status, poe_status, poe_class,        what the board's files say, as text
  board_id, product_id
  ktm5030_mode                              0, or 2 for any other mode
  ktm5030_mode_byte                         the mode as the device tells it
  ktm5030_info                              three numbers

  Temperatures and voltages are rounded to thousandths. In texts of the table a
  backslash is \\, and \n, \r, \t or \xHH stand for control characters and bytes
  that are no UTF-8, which are U+FFFD in JSON; an empty text is "".

  Left out on purpose: who drives the fan, which its reader does not hand out;
  the events of the KTM5030, since whoever reads one takes it from the others.

Examples:
  vgnctl status
  vgnctl status --json | jq .fan_speed
  ssh appliance vgnctl status --json | jq '.board_temperature_a // "unknown"'

Exit status:
  0  done
  1  nothing at all is available
  2  wrong use)";

void print_status(bool as_json) {
  const auto items = read_status();
  if (as_json) {
    std::cout << status_json(items) << '\n';
  } else {
    std::cout << status_table(items);
  }
  if (std::all_of(items.begin(), items.end(), [](const status_item_t& item) { return item.value.is_null(); })) {
    std::cout.flush();
    throw zyl::exception_t("this machine tells nothing about its hardware");
  }
}

}  // namespace

void register_status_command(CLI::App& app) {
  CLI::App* command = app.add_subcommand("status", "Print temperatures, fan, power supply and more");
  const auto as_json = std::make_shared<bool>(false);
  command->add_flag("--json", *as_json, "Print a JSON object");
  command->footer(status_footer);
  command->callback([as_json] { print_status(*as_json); });
}

}  // namespace vgnctl
