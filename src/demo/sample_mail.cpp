#include "demo/sample_mail.h"

#include <QByteArray>
#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include "core/text/strings.h"

namespace vonel::sandbox {

namespace {

// What a message is made of besides its plain text.
enum class Shape { Plain, Pdf, Png, Html, QuotedPrintable, Big, Invite };

struct Sample {
  SampleBox box;
  int minutesBefore;  // before the start of the day
  const char* from;
  const char* to;
  const char* subject;
  const char* body;
  Shape shape = Shape::Plain;
  const char* messageId = nullptr;  // none: the message has no Message-ID line
  const char* inReplyTo = nullptr;
};

constexpr const char* kHome = "Robin Ashdown <robin@example.org>";
constexpr const char* kWork = "Robin Ashdown <r.ashdown@example.com>";

// A receipt of one page and a small picture, both valid files.
constexpr const char* kPdf =
    "JVBERi0xLjQKMSAwIG9iago8PCAvVHlwZSAvQ2F0YWxvZyAvUGFnZXMgMiAwIFIgPj4KZW5kb2JqCjIgMCBvYmoKPDwgL1R5cGUgL1BhZ2VzIC9L"
    "aWRzIFszIDAgUl0gL0NvdW50IDEgPj4KZW5kb2JqCjMgMCBvYmoKPDwgL1R5cGUgL1BhZ2UgL1BhcmVudCAyIDAgUiAvTWVkaWFCb3ggWzAgMCAz"
    "MDAgMTQ0XSAvQ29udGVudHMgNCAwIFIgL1Jlc291cmNlcyA8PCAvRm9udCA8PCAvRjEgNSAwIFIgPj4gPj4gPj4KZW5kb2JqCjQgMCBvYmoKPDwg"
    "L0xlbmd0aCAxMDYgPj4Kc3RyZWFtCkJUIC9GMSAxOCBUZiAyNCA5MCBUZCAoR3JlZW53YXkgQ3ljbGVzKSBUaiAwIC0yOCBUZCAvRjEgMTIgVGYg"
    "KFJlY2VpcHQgNDAxMTc6IDEgYmljeWNsZSBiZWxsLCAxMi41MCkgVGogRVQKZW5kc3RyZWFtCmVuZG9iago1IDAgb2JqCjw8IC9UeXBlIC9Gb250"
    "IC9TdWJ0eXBlIC9UeXBlMSAvQmFzZUZvbnQgL0hlbHZldGljYSA+PgplbmRvYmoKeHJlZgowIDYKMDAwMDAwMDAwMCA2NTUzNSBmIAowMDAwMDAw"
    "MDA5IDAwMDAwIG4gCjAwMDAwMDAwNTggMDAwMDAgbiAKMDAwMDAwMDExNSAwMDAwMCBuIAowMDAwMDAwMjQxIDAwMDAwIG4gCjAwMDAwMDAzOTgg"
    "MDAwMDAgbiAKdHJhaWxlcgo8PCAvU2l6ZSA2IC9Sb290IDEgMCBSID4+CnN0YXJ0eHJlZgo0NjgKJSVFT0YK";
constexpr const char* kPng =
    "iVBORw0KGgoAAAANSUhEUgAAABAAAAAQCAIAAACQkWg2AAAASUlEQVR42mPQ6w4nCTEMfg3///8nWQN+Pdg14NGDxQ/49WD3NB49OEMJlx58wYpV"
    "D4F4wNRDOOLQ9BAV08h6iE0acD0kpCWIBgDgME2wC5jS9gAAAABJRU5ErkJggg==";

const Sample kSamples[] = {
    // Home: a thread, friends and family, a receipt, newsletters, a big one, spam.
    {SampleBox::Home, 2 * 24 * 60 + 300, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Lunch on Saturday?",
     "Hi Robin,\nAre you free for lunch on Saturday? The new place by the harbour has a table at one.\nDana",
     Shape::Plain, "<lunch-1@example.org>"},
    {SampleBox::Home, 2 * 24 * 60 + 120, "Priya Castellano <priya@example.net>", kHome, "Re: Lunch on Saturday?",
     "Count me in, I can bring the cake.\nPriya\n\n> Are you free for lunch on Saturday?", Shape::Plain,
     "<lunch-2@example.net>", "<lunch-1@example.org>"},
    {SampleBox::Home, 24 * 60 + 400, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Re: Lunch on Saturday?",
     "Lovely. Table booked for four, see you both at one.\nDana\n\n> Count me in, I can bring the cake.",
     Shape::Plain, "<lunch-3@example.org>", "<lunch-2@example.net>"},
    {SampleBox::Home, 24 * 60 + 90, "Greenway Cycles <orders@shop.example.net>", kHome, "Your receipt 40117",
     "Thank you for your order at Greenway Cycles.\nYour receipt is attached. Order 40117: one bicycle bell, 12.50.",
     Shape::Pdf, "<receipt-40117@shop.example.net>"},
    {SampleBox::Home, 5 * 24 * 60, "Leo Marchetti <leo@example.net>", kHome, "Photos from the harbour walk",
     "Hi Robin,\nHere is the little map I drew of the walk. More photos at the weekend.\nLeo", Shape::Png,
     "<walk-photos@example.net>"},
    {SampleBox::Home, 9 * 24 * 60, "The Allotment Gazette <gazette@lists.example.net>", kHome,
     "The Allotment Gazette, January",
     "In this edition: planning the spring beds, seed swap on the 24th, and the plot 14 compost report.",
     Shape::Plain, "<gazette-2026-01@lists.example.net>"},
    {SampleBox::Home, 3 * 24 * 60, "Harbour Library <news@library.example.org>", kHome,
     "New this month at the library",
     "New this month: a reading group on Tuesdays, longer opening hours on Thursdays, and the local history "
     "room opens again after its repairs. Bring your library card to borrow up to twelve books at once.",
     Shape::QuotedPrintable, "<library-jan@library.example.org>"},
    {SampleBox::Home, 600, "Priya Castellano <priya@example.net>", kHome,
     "=?ISO-8859-1?Q?Caf=E9=20tickets=20for=20the=20r=E9cital?=",
     "I got two tickets for the recital at the cafe on Friday. Want one?\nPriya", Shape::Plain,
     "<recital@example.net>"},
    {SampleBox::Home, 12 * 24 * 60, "Harbour Rowing Club <secretary@rowing.example.org>", kHome,
     "Season handbook 2026", "Dear members,\nThe season handbook for 2026 follows below.", Shape::Big,
     "<handbook-2026@rowing.example.org>"},
    {SampleBox::Home, 200, "International Lottery Board <claims@lottery-board.example.net>", kHome,
     "Congratulations, lottery winner", "Your e-mail address has won 1,500,000 in our lottery. Send your bank "
     "details to claim the prize.", Shape::Plain, "<claim-8812@lottery-board.example.net>"},
    {SampleBox::Home, 340, "Pharmacy Direct <sales@pharmacy-direct.example.com>", kHome,
     "Cheap pills without prescription, viagra cialis discount",
     "Best prices on pills. No prescription needed. Order now and save 80%.", Shape::Plain,
     "<rx-5521@pharmacy-direct.example.com>"},
    {SampleBox::Home, 460, "Example Bank Security <security@secure-login.example.net>", kHome,
     "Urgent: verify your account now",
     "Your account has been suspended. Verify your account within 24 hours:\n"
     "http://secure-login.example.net/verify?id=77812\nExample Bank Security Team",
     Shape::Plain, "<verify-77812@secure-login.example.net>"},
    {SampleBox::Home, 520, "VIP Casino <bonus@casino-royale.example.com>", kHome,
     "Your exclusive casino bonus is waiting",
     "<html><body><h1>500% CASINO BONUS</h1><p>Claim your free spins now! Exclusive offer for winners.</p>"
     "<p><a href=\"http://casino-royale.example.com/claim\">CLAIM BONUS</a></p></body></html>",
     Shape::Html, "<bonus-33@casino-royale.example.com>"},
    {SampleBox::Home, 700, "Bargain Mail <deals@bargain-mail.example.com>", kHome, "Deals of the week",
     "This week only: kitchen gadgets, garden furniture and more at half price.", Shape::Plain,
     "<deals-w2@bargain-mail.example.com>"},
    {SampleBox::Home, 760, "Super Offers <hello@offers.example.net>", kHome, "Last chance offer",
     "Last chance! Our best offer ends tonight.", Shape::Plain, "<last-chance@offers.example.net>"},
    {SampleBox::Home, 4 * 24 * 60, "Old Forum <noreply@forum.example.org>", "Robin <robin.old@example.org>",
     "Forum digest: 14 new posts", "Fourteen new posts in the threads you follow.", Shape::Plain,
     "<digest-991@forum.example.org>"},
    {SampleBox::Home, 2 * 24 * 60 + 280, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Lunch on Saturday?",
     "Hi Robin,\nAre you free for lunch on Saturday? The new place by the harbour has a table at one.\nDana",
     Shape::Plain, "<lunch-1@example.org>"},
    {SampleBox::Home, 900, "Margaret Ashdown <margaret.ashdown@example.net>", kHome, "Sunday",
     "Dinner at six on Sunday, your father is making his soup. Love, Mum", Shape::Plain, nullptr},
    {SampleBox::Home, 380, "Slim Now <info@slim-now.example.com>", kHome, "Lose 10 kilos in 10 days, free trial",
     "Our miracle formula melts fat. Free trial, order now.", Shape::Plain, "<slim-4@slim-now.example.com>"},
    {SampleBox::Home, 1100, "Rewards Centre <rewards@gift-centre.example.net>", kHome,
     "You have been selected for a free gift card",
     "Congratulations! Click to claim your free 500 gift card today.", Shape::Plain,
     "<gift-120@gift-centre.example.net>"},
    {SampleBox::Home, 6 * 24 * 60, "Sam Okoro <sam.okoro@example.org>", kHome, "Board games night",
     "Board games at mine on Wednesday? Bring the new one you got for your birthday.\nSam", Shape::Plain,
     "<games-night@example.org>"},
    {SampleBox::Home, 30, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Invitation: Birthday dinner",
     "You are invited to Priya's birthday dinner on the 24th at seven.", Shape::Invite,
     "<birthday-dinner@example.org>"},

    // Work: planning, a report thread, receipts, a newsletter, spam.
    {SampleBox::Work, 45, "Mei Okafor <mei.okafor@example.com>", kWork, "Invitation: Quarterly planning",
     "Quarterly planning, Thursday 10:00 to 12:00 in the river room.", Shape::Invite,
     "<planning-q1@example.com>"},
    {SampleBox::Work, 3 * 24 * 60 + 60, "Tomas Brandt <tomas.brandt@example.com>", kWork,
     "Draft of the Q1 report", "Robin,\nThe draft of the Q1 report is on the team drive. Comments by Friday?\nTomas",
     Shape::Plain, "<q1-draft@example.com>"},
    {SampleBox::Work, 2 * 24 * 60 + 30, "Tomas Brandt <tomas.brandt@example.com>", kWork,
     "Re: Draft of the Q1 report", "Thanks for the comments, the new draft has the revised numbers.\nTomas",
     Shape::Plain, "<q1-draft-2@example.com>", "<q1-draft@example.com>"},
    {SampleBox::Work, 8 * 24 * 60, "IT Desk <it-desk@example.com>", kWork, "Password expiry notice",
     "Your network password expires in 7 days. Change it from the staff portal.", Shape::Plain,
     "<pw-expiry@example.com>"},
    {SampleBox::Work, 15 * 24 * 60, "Ferry Travel <bookings@travel.example.net>", kWork,
     "Booking confirmation FT-2291", "Your crossing on the 3rd is confirmed. Booking FT-2291, two passengers.",
     Shape::Plain, "<ft-2291@travel.example.net>"},
    {SampleBox::Work, 4 * 24 * 60, "Industry Weekly <weekly@lists.example.net>", kWork,
     "Industry Weekly: logistics in 2026", "This week: logistics in 2026, a port strike ends, and three new hires.",
     Shape::Plain, "<weekly-02@lists.example.net>"},
    {SampleBox::Work, 250, "SEO Boost <rank@seo-boost.example.com>", kWork,
     "Page one guaranteed, cheap SEO offer",
     "We guarantee page one rankings. Cheap offer, click now.", Shape::Plain,
     "<seo-1@seo-boost.example.com>"},
    {SampleBox::Work, 300, "Billing Department <billing@invoice-overdue.example.net>", kWork,
     "Overdue invoice - verify your account immediately",
     "Your invoice is overdue. Verify your account and pay now to avoid suspension.", Shape::Plain,
     "<inv-0092@invoice-overdue.example.net>"},
    {SampleBox::Work, 420, "Meds Online <shop@meds-online.example.com>", kWork, "Viagra and cialis at 80% off",
     "Pills shipped worldwide. No prescription.", Shape::Plain, "<meds-8@meds-online.example.com>"},
    {SampleBox::Work, 480, "Euro Prize Promotions <promo@euro-prize.example.net>", kWork,
     "Lottery claim number 7731", "Your lottery claim number is 7731. Reply to receive your prize.",
     Shape::Plain, "<claim-7731@euro-prize.example.net>"},
    {SampleBox::Work, 150, "Mei Okafor <mei.okafor@example.com>", kWork, "1:1 moved to Thursday",
     "Robin, can we move our 1:1 to Thursday at three? Mei", Shape::Plain, "<one-to-one@example.com>"},
    {SampleBox::Work, 24 * 60 + 600, "Kai Lindqvist <kai@partner.example.org>", kWork, "Contract question",
     "Hello Robin,\nA question on clause 4 of the service contract: does the notice period start at signing?\nKai",
     Shape::Plain, "<contract-q@partner.example.org>"},
    {SampleBox::Work, 640, "Account Manager <am@partner.example.org>", "Robin <robin@old-isp.example.net>",
     "Your old address", "We still have your old address on file.", Shape::Plain,
     "<old-address@partner.example.org>"},
    {SampleBox::Work, 7 * 24 * 60, "Canteen <canteen@example.com>", kWork, "Menu for next week",
     "Monday soup, Tuesday curry, Wednesday pasta, Thursday fish, Friday pizza.", Shape::Plain,
     "<menu-w3@example.com>"},

    // Stored good mail, from which training learns what is wanted.
    {SampleBox::Inbox, 20 * 24 * 60, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Walk on Sunday",
     "Walk along the harbour on Sunday? Lunch after.", Shape::Plain, "<walk@example.org>"},
    {SampleBox::Inbox, 21 * 24 * 60, "Priya Castellano <priya@example.net>", kHome, "Re: Walk on Sunday",
     "Yes please, and the cafe for cake.", Shape::Plain, "<walk-2@example.net>"},
    {SampleBox::Inbox, 22 * 24 * 60, "Leo Marchetti <leo@example.net>", kHome, "Harbour photos",
     "Photos from the harbour and the lighthouse.", Shape::Plain, "<harbour@example.net>"},
    {SampleBox::Inbox, 23 * 24 * 60, "Sam Okoro <sam.okoro@example.org>", kHome, "Games on Wednesday",
     "Board games again on Wednesday?", Shape::Plain, "<games@example.org>"},
    {SampleBox::Inbox, 24 * 24 * 60, "Margaret Ashdown <margaret.ashdown@example.net>", kHome, "Sunday dinner",
     "Dinner on Sunday, love Mum.", Shape::Plain, "<dinner@example.net>"},
    {SampleBox::Inbox, 25 * 24 * 60, "The Allotment Gazette <gazette@lists.example.net>", kHome,
     "The Allotment Gazette, December", "Winter digging, plot 14 and the seed swap.", Shape::Plain,
     "<gazette-12@lists.example.net>"},
    {SampleBox::Inbox, 26 * 24 * 60, "Harbour Library <news@library.example.org>", kHome,
     "Library card renewal", "Your library card renewal is due; reading group on Tuesday.", Shape::Plain,
     "<card@library.example.org>"},
    {SampleBox::Inbox, 27 * 24 * 60, "Greenway Cycles <orders@shop.example.net>", kHome, "Your receipt 39980",
     "Thank you for your order: one bicycle light.", Shape::Plain, "<receipt-39980@shop.example.net>"},
    {SampleBox::Inbox, 28 * 24 * 60, "Harbour Rowing Club <secretary@rowing.example.org>", kHome,
     "Rowing club members meeting", "The members meeting is on the 12th at the club house.", Shape::Plain,
     "<members@rowing.example.org>"},
    {SampleBox::Inbox, 29 * 24 * 60, "Dana Whitlock <dana.whitlock@example.org>", kHome, "Birthday plans",
     "Ideas for Priya's birthday dinner?", Shape::Plain, "<plans@example.org>"},
    {SampleBox::Inbox, 20 * 24 * 60 + 60, "Mei Okafor <mei.okafor@example.com>", kWork, "Team planning notes",
     "Notes from the planning meeting on Thursday.", Shape::Plain, "<notes@example.com>"},
    {SampleBox::Inbox, 21 * 24 * 60 + 60, "Tomas Brandt <tomas.brandt@example.com>", kWork, "Report numbers",
     "The report numbers for the quarter, draft two.", Shape::Plain, "<numbers@example.com>"},
    {SampleBox::Inbox, 22 * 24 * 60 + 60, "Tomas Brandt <tomas.brandt@example.com>", kWork,
     "Re: Report numbers", "Comments on the draft are in.", Shape::Plain, "<numbers-2@example.com>"},
    {SampleBox::Inbox, 23 * 24 * 60 + 60, "IT Desk <it-desk@example.com>", kWork, "Printer on floor two",
     "The printer on floor two works again.", Shape::Plain, "<printer@example.com>"},
    {SampleBox::Inbox, 24 * 24 * 60 + 60, "Ferry Travel <bookings@travel.example.net>", kWork,
     "Booking confirmation FT-1904", "Your crossing is confirmed, booking FT-1904.", Shape::Plain,
     "<ft-1904@travel.example.net>"},
    {SampleBox::Inbox, 25 * 24 * 60 + 60, "Industry Weekly <weekly@lists.example.net>", kWork,
     "Industry Weekly: the year in logistics", "The year in logistics and the new port.", Shape::Plain,
     "<weekly-52@lists.example.net>"},
    {SampleBox::Inbox, 26 * 24 * 60 + 60, "Kai Lindqvist <kai@partner.example.org>", kWork, "Service contract",
     "The service contract for next year, for your review.", Shape::Plain, "<contract@partner.example.org>"},
    {SampleBox::Inbox, 27 * 24 * 60 + 60, "Canteen <canteen@example.com>", kWork, "Menu for this week",
     "Soup, curry, pasta, fish and pizza.", Shape::Plain, "<menu-w2@example.com>"},
    {SampleBox::Inbox, 28 * 24 * 60 + 60, "Mei Okafor <mei.okafor@example.com>", kWork, "1:1 on Thursday",
     "Our 1:1 is on Thursday at three.", Shape::Plain, "<one-to-one-0@example.com>"},
    {SampleBox::Inbox, 29 * 24 * 60 + 60, "Account Manager <am@partner.example.org>", kWork, "Quarterly review",
     "The quarterly review with us is done, nothing to do.", Shape::Plain, "<review@partner.example.org>"},

    // Stored spam, from which training learns what is not.
    {SampleBox::Spam, 20 * 24 * 60, "Cheap Meds <rx@cheap-meds.example.com>", kHome, "Cheap pills online",
     "Pills, viagra, cialis. No prescription.", Shape::Plain, "<s1@cheap-meds.example.com>"},
    {SampleBox::Spam, 20 * 24 * 60 + 30, "Pharmacy <sales@pharma-24.example.net>", kHome,
     "Viagra cialis discount, no prescription", "Discount pills, order now.", Shape::Plain,
     "<s2@pharma-24.example.net>"},
    {SampleBox::Spam, 21 * 24 * 60, "Lottery Office <winner@lotto.example.com>", kHome, "You are a winner",
     "Claim your prize now, winner.", Shape::Plain, "<s3@lotto.example.com>"},
    {SampleBox::Spam, 21 * 24 * 60 + 30, "Prize Desk <claims@prize-desk.example.net>", kWork,
     "Claim your prize, free gift card", "Free gift card, claim now.", Shape::Plain,
     "<s4@prize-desk.example.net>"},
    {SampleBox::Spam, 22 * 24 * 60, "Casino Gold <vip@casino-gold.example.com>", kHome,
     "Exclusive casino bonus, free spins", "Casino bonus and free spins for you.", Shape::Plain,
     "<s5@casino-gold.example.com>"},
    {SampleBox::Spam, 22 * 24 * 60 + 30, "Bank Alert <alert@bank-verify.example.net>", kHome,
     "Urgent: verify your account", "Verify your account now or it will be suspended.", Shape::Plain,
     "<s6@bank-verify.example.net>"},
    {SampleBox::Spam, 23 * 24 * 60, "Security Team <security@account-check.example.com>", kWork,
     "Account suspended, verify now", "Urgent action needed, verify your account.", Shape::Plain,
     "<s7@account-check.example.com>"},
    {SampleBox::Spam, 23 * 24 * 60 + 30, "Slim Fast <info@slim-fast.example.net>", kHome,
     "Lose weight fast, free trial", "Miracle formula, free trial.", Shape::Plain, "<s8@slim-fast.example.net>"},
    {SampleBox::Spam, 24 * 24 * 60, "Diet Pills <order@diet.example.com>", kHome, "Lose 15 kilos, miracle pills",
     "Order the miracle pills now.", Shape::Plain, "<s9@diet.example.com>"},
    {SampleBox::Spam, 24 * 24 * 60 + 30, "SEO Pros <rank@seo-pros.example.net>", kWork,
     "Page one rankings guaranteed", "Cheap SEO offer, click now.", Shape::Plain, "<s10@seo-pros.example.net>"},
    {SampleBox::Spam, 25 * 24 * 60, "Invoice Centre <billing@invoice-now.example.com>", kWork,
     "Overdue invoice, pay immediately", "Overdue invoice, open immediately.", Shape::Plain,
     "<s11@invoice-now.example.com>"},
    {SampleBox::Spam, 25 * 24 * 60 + 30, "Bank Security <alerts@bank-secure.example.net>", kHome,
     "Security alert: verify your account now", "Verify your account now, urgent.", Shape::Plain,
     "<s12@crypto-riches.example.net>"},
    {SampleBox::Spam, 26 * 24 * 60, "Rewards Centre <prizes@rewards-centre.example.com>", kHome,
     "Selected for a free gift card reward", "You have been selected, claim your free gift card.", Shape::Plain,
     "<s13@fast-cash.example.com>"},
    {SampleBox::Spam, 26 * 24 * 60 + 30, "Slim Now Shop <shop@slim-shop.example.net>", kHome,
     "Lose 10 kilos, free trial now", "Miracle weight loss, free trial.", Shape::Plain,
     "<s14@replica.example.net>"},
    {SampleBox::Spam, 27 * 24 * 60, "VIP Casino Club <vip@casino-club.example.net>", kHome,
     "Your casino bonus is waiting", "Exclusive casino bonus waiting, claim now.", Shape::Plain,
     "<s15@winners.example.com>"},
    {SampleBox::Spam, 27 * 24 * 60 + 30, "Mega Offers <offers@mega-deals.example.net>", kHome,
     "Exclusive offer, free bonus today", "Free bonus with every order, exclusive offer.", Shape::Plain,
     "<s16@mega-deals.example.net>"},
    {SampleBox::Spam, 28 * 24 * 60, "Online Pharmacy <rx@online-rx.example.com>", kWork,
     "Cialis and viagra, cheap and discreet", "Cheap pills, discreet shipping.", Shape::Plain,
     "<s17@online-rx.example.com>"},
    {SampleBox::Spam, 28 * 24 * 60 + 30, "Gift Rewards <rewards@reward-now.example.net>", kHome,
     "You have been selected: free gift", "Selected for a free gift, click to claim.", Shape::Plain,
     "<s18@reward-now.example.net>"},
    {SampleBox::Spam, 29 * 24 * 60, "Casino Royal <bonus@royal-spins.example.com>", kWork,
     "Casino bonus 500%, claim free spins", "Claim your casino bonus.", Shape::Plain,
     "<s19@royal-spins.example.com>"},
    {SampleBox::Spam, 29 * 24 * 60 + 30, "Account Services <verify@secure-mail.example.net>", kHome,
     "Verify your account immediately", "Urgent: your account will be suspended.", Shape::Plain,
     "<s20@secure-mail.example.net>"},
};

std::string crlf(std::string_view text) { return text::replaceAll(text, "\n", "\r\n"); }

std::string base64Lines(const QByteArray& base64) {
  std::string lines;
  for (qsizetype at = 0; at < base64.size(); at += 76) lines += base64.mid(at, 76).toStdString() + "\r\n";
  return lines;
}

// Every byte that is no printable ASCII, and "=", as =XX; lines cut at 76 with a soft break.
std::string quotedPrintable(std::string_view text) {
  std::string out;
  std::size_t lineLength = 0;
  for (const char c : text) {
    if (c == '\n') {
      out += "\r\n";
      lineLength = 0;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    std::string piece(1, c);
    if (byte == '=' || byte < 32 || byte > 126) {
      static constexpr char kHex[] = "0123456789ABCDEF";
      piece = {'=', kHex[byte >> 4], kHex[byte & 15]};
    }
    if (lineLength + piece.size() > 75) {
      out += "=\r\n";
      lineLength = 0;
    }
    out += piece;
    lineLength += piece.size();
  }
  return out + "\r\n";
}

// A handbook of about 300 KB: numbered sections of plain lines.
std::string handbookText() {
  std::string text;
  for (int section = 1; text.size() < 300 * 1024; ++section) {
    text += "Section " + std::to_string(section) + "\r\n";
    for (int line = 1; line <= 12; ++line) {
      text += "Rule " + std::to_string(section) + "." + std::to_string(line) +
              ": members sign the boat book before and after every outing, and report any damage.\r\n";
    }
    text += "\r\n";
  }
  return text;
}

std::string attachmentPart(std::string_view type, std::string_view name, const char* base64) {
  return "--sample-boundary\r\nContent-Type: " + std::string(type) + "; name=\"" + std::string(name) +
         "\"\r\nContent-Transfer-Encoding: base64\r\nContent-Disposition: attachment; filename=\"" +
         std::string(name) + "\"\r\n\r\n" + base64Lines(QByteArray(base64));
}

std::string invitePart(const Sample& sample) {
  return "--sample-boundary\r\nContent-Type: text/calendar; charset=UTF-8; method=REQUEST\r\n\r\n"
         "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Example//Sample//EN\r\nMETHOD:REQUEST\r\nBEGIN:VEVENT\r\n"
         "UID:" + std::string(sample.messageId) + "\r\nSUMMARY:" + std::string(sample.subject).substr(12) +
         "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

// The content header lines and the body of the message, by its shape.
std::string contentOf(const Sample& sample) {
  const std::string plain = "Content-Type: text/plain; charset=UTF-8\r\n\r\n" + crlf(sample.body) + "\r\n";
  const std::string mixed = "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"sample-boundary\"\r\n\r\n"
                            "This is a message in several parts.\r\n--sample-boundary\r\n" + plain;
  switch (sample.shape) {
    case Shape::Plain: return "MIME-Version: 1.0\r\n" + plain;
    case Shape::Pdf: return mixed + attachmentPart("application/pdf", "receipt-40117.pdf", kPdf) + "--sample-boundary--\r\n";
    case Shape::Png: return mixed + attachmentPart("image/png", "harbour-walk.png", kPng) + "--sample-boundary--\r\n";
    case Shape::Invite: return mixed + invitePart(sample) + "--sample-boundary--\r\n";
    case Shape::Html:
      return "MIME-Version: 1.0\r\nContent-Type: text/html; charset=UTF-8\r\n\r\n" + crlf(sample.body) + "\r\n";
    case Shape::QuotedPrintable:
      return "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\n"
             "Content-Transfer-Encoding: quoted-printable\r\n\r\n" + quotedPrintable(sample.body);
    case Shape::Big: return "MIME-Version: 1.0\r\n" + plain + "\r\n" + handbookText();
  }
  return plain;
}

std::string dateLine(const QDate& day, int minutesBefore) {
  const QDateTime when = QDateTime(day, QTime(0, 0), QTimeZone::utc()).addSecs(-60LL * minutesBefore);
  return QLocale::c().toString(when, "ddd, d MMM yyyy hh:mm:ss").toStdString() + " +0000";
}

std::string messageBytes(const Sample& sample, const QDate& day) {
  std::string bytes = "From: " + std::string(sample.from) + "\r\nTo: " + sample.to + "\r\nSubject: " + sample.subject +
                      "\r\nDate: " + dateLine(day, sample.minutesBefore) + "\r\n";
  if (sample.messageId) bytes += "Message-ID: " + std::string(sample.messageId) + "\r\n";
  if (sample.inReplyTo) {
    bytes += "In-Reply-To: " + std::string(sample.inReplyTo) + "\r\nReferences: " + sample.inReplyTo + "\r\n";
  }
  return bytes + contentOf(sample);
}

}  // namespace

std::vector<SampleMessage> sampleMail(const QDate& day) {
  std::vector<SampleMessage> mail;
  int counts[4] = {0, 0, 0, 0};
  for (const Sample& sample : kSamples) {
    const int number = ++counts[static_cast<int>(sample.box)];
    char name[16];
    std::snprintf(name, sizeof name, "%04d.eml", number);
    mail.push_back({sample.box, name, messageBytes(sample, day)});
  }
  return mail;
}

}  // namespace vonel::sandbox
