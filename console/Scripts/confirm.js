// Asked before a delete form is sent; the form is not sent when the user says no.
function ConfirmDeleteMessage() {
  return window.confirm("Delete this message? It cannot be brought back.");
}
