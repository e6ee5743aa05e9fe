#include "varnel/purchase/RenewableGuest.h"

#include "varnel/platform/Describe.h"

namespace varnel {

std::string RenewableGuest::debugDescription() const {
  const Fields& f = fields_;
  std::string text;
  text.reserve(256);
  text += "isMe: " + describe(f.isMe);
  text += " \n AvtarID: " + f.avatarID;
  text += " \n First Name: " + f.guestFirstName;
  text += " \n Last Name: " + f.guestLastName;
  text += " \n Full Name: " + f.guestFullName;
  text += " \n PassName: " + f.guestPassName;
  text += " \n date of birth: " + f.dob;
  text += " \n street Address: " + f.streetAddress;
  text += " \n city: " + f.city;
  text += " \n Country: " + f.country;
  text += " \n ZipCode: " + f.zipCode;
  text += " \n phone Number: " + f.phoneNumber;
  text += " \n emailId: " + f.emailId;
  text += " \n participant Id: " + f.participantId;
  text += " \n guest Kuid: " + f.guestKuid;
  text += " \n phoneNumber Type: " + f.phoneNumberType;
  return text;
}

Json RenewableGuest::toJson() const {
  const Fields& f = fields_;
  return Json{{"isMe", f.isMe},
              {"avatarID", f.avatarID},
              {"guestFirstName", f.guestFirstName},
              {"guestLastName", f.guestLastName},
              {"guestFullName", f.guestFullName},
              {"guestPassName", f.guestPassName},
              {"dob", f.dob},
              {"streetAddress", f.streetAddress},
              {"city", f.city},
              {"state", f.state},
              {"country", f.country},
              {"zipCode", f.zipCode},
              {"phoneNumber", f.phoneNumber},
              {"emailId", f.emailId},
              {"participantId", f.participantId},
              {"guestKuid", f.guestKuid},
              {"phoneNumberType", f.phoneNumberType}};
}

}  // namespace varnel
