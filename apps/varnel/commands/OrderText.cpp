#include "commands/OrderText.h"

#include <array>
#include <cctype>
#include <optional>
#include <utility>

namespace varnel::cli {
namespace {

/// Tags after which the text goes on on a new line.
bool endsALine(std::string_view tag) {
  if (!tag.empty() && tag.front() == '/') tag.remove_prefix(1);
  const auto end = tag.find_first_of(" \t\r\n/");
  std::string name(tag.substr(0, end));
  for (auto& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return name == "br" || name == "p" || name == "div" || name == "li" || name == "tr" ||
         (name.size() == 2 && name[0] == 'h' && name[1] >= '1' && name[1] <= '6');
}

void appendEntity(std::string& out, std::string_view html, std::size_t& i) {
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kEntities{{
      {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&apos;", "'"}, {"&nbsp;", " "},
  }};
  for (const auto& [entity, text] : kEntities) {
    if (html.substr(i, entity.size()) == entity) {
      out += text;
      i += entity.size();
      return;
    }
  }
  out += '&';
  ++i;
}

/// Joins the lines of `text`, each trimmed, blank ones dropped, blank runs made one.
std::string tidyLines(const std::string& text) {
  std::string tidy, line;
  const auto flush = [&] {
    while (!line.empty() && line.back() == ' ') line.pop_back();
    if (!line.empty()) tidy += (tidy.empty() ? "" : "\n") + line;
    line.clear();
  };
  for (const char c : text) {
    if (c == '\n') {
      flush();
    } else if (c == ' ' || c == '\t' || c == '\r') {
      if (!line.empty() && line.back() != ' ') line += ' ';
    } else {
      line += c;
    }
  }
  flush();
  return tidy;
}

std::string amountText(const std::optional<std::string>& value, const std::string& currency) {
  return value ? *value + (currency.empty() ? "" : " " + currency) : std::string("-");
}

std::string guestName(const RenewableGuest& guest) {
  std::string name = guest.guestFullName().empty() ? guest.guestFirstName() + " " + guest.guestLastName()
                                                   : guest.guestFullName();
  if (name == " ") name = guest.participantId();
  return guest.isMe() ? name + " (you)" : name;
}

std::string indented(const std::string& text, std::string_view indent) {
  std::string out(indent);
  for (const char c : text) {
    out += c;
    if (c == '\n') out += indent;
  }
  return out + "\n";
}

}  // namespace

std::string plainTextOfHtml(std::string_view html) {
  std::string text;
  for (std::size_t i = 0; i < html.size();) {
    if (html[i] == '<') {
      const auto close = html.find('>', i);
      if (close == std::string_view::npos) break;  // an unfinished tag shows nothing
      if (endsALine(html.substr(i + 1, close - i - 1))) text += '\n';
      i = close + 1;
    } else if (html[i] == '&') {
      appendEntity(text, html, i);
    } else {
      text += html[i++];
    }
  }
  return tidyLines(text);
}

std::string orderSummary(const RenewalOrder& order) {
  const RenewalPricing& pricing = order.pricing;
  std::string text = "Order " + (order.orderId.empty() ? std::string("(no number)") : order.orderId) + ", " +
                     (order.paymentPlan ? "monthly payment plan" : "paid in full") + "\n";
  text += "Passes:\n";
  if (order.products.empty()) text += "  none\n";
  for (const auto& product : order.products) {
    std::string holders;
    for (const auto& participant : product.participantId) {
      std::string name = participant;
      for (const auto& guest : order.guests) {
        if (guest.participantId() == participant) name = guestName(guest);
      }
      holders += (holders.empty() ? "" : ", ") + name;
    }
    text += "  " + product.passName + (holders.empty() ? "" : ", for " + holders) + "\n";
  }
  text += "Guests:\n";
  if (order.guests.empty()) text += "  none\n";
  for (const auto& guest : order.guests) {
    text += "  " + guestName(guest) + (guest.guestPassName().empty() ? "" : ", " + guest.guestPassName()) + "\n";
  }
  text += "Pricing:\n";
  text += "  Subtotal:         " + amountText(pricing.subtotal, pricing.currency) + "\n";
  text += "  Tax:              " + amountText(pricing.taxAmount, pricing.currency) +
          (pricing.taxIncluded ? " (included)" : "") + "\n";
  text += "  Total:            " + amountText(pricing.total, pricing.currency) + "\n";
  if (order.paymentPlan) {
    text += "  Down payment:     " + amountText(pricing.downPaymentAmount, pricing.currency) + "\n";
    text += "  Monthly payment:  " + amountText(pricing.monthlyPaymentAmount, pricing.currency) + "\n";
  }
  if (const std::string terms = plainTextOfHtml(order.bookingTermsAndConditions); !terms.empty()) {
    text += "Terms:\n" + indented(terms, "  ");
  }
  for (const auto& policy : order.termsAndConditionsPolicies) {
    text += (policy.name.empty() ? std::string("Policy") : policy.name) + ":\n";
    for (const auto& description : policy.descriptions) {
      if (const std::string body = plainTextOfHtml(description.htmlText); !body.empty()) {
        text += indented(body, "  ");
      }
    }
  }
  return text;
}

}  // namespace varnel::cli
