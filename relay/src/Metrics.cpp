#include "Metrics.h"

#include <sstream>

namespace relay {

std::string Metrics::text() const {
    std::ostringstream out;
    const auto line = [&out](const char *name, const char *type, const char *help, auto value) {
        out << "# HELP pavonel_relay_" << name << ' ' << help << "\n# TYPE pavonel_relay_" << name << ' '
            << type << "\npavonel_relay_" << name << ' ' << value << '\n';
    };
    line("phones", "gauge", "Phones that wait for a break.", phones);
    line("connections", "gauge", "Connections that stand.", connections);
    line("breaks_total", "counter", "Breaks that computers began.", breaks);
    line("events_total", "counter", "Events told to phones.", events);
    line("codes_total", "counter", "Codes given out.", codes);
    line("pairings_total", "counter", "Phones that were paired.", pairings);
    line("wrong_codes_total", "counter", "Codes that were wrong or came too often.", wrongCodes);
    line("refused_connections_total", "counter", "Connections beyond the limits.", refusedConnections);
    out << "# HELP pavonel_relay_responses_total Answers by class of status.\n"
           "# TYPE pavonel_relay_responses_total counter\n";
    for (std::size_t digit = 1; digit < responses.size(); ++digit)
        out << "pavonel_relay_responses_total{status=\"" << digit << "xx\"} " << responses[digit] << '\n';
    return out.str();
}

} // namespace relay
