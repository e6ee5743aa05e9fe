{
  "contractForEmail": "<html><body><h1>Monthly Payment Agreement</h1><p>Twelve payments of 111.77 USD.</p></body></html>",
  "contractForMobile": "<h2>Monthly Payment Agreement</h2><p>Twelve payments of 111.77 USD.</p>",
  "keySections": {
    "paymentSchedule": "https://commerce.example.test/contracts/ORD7731A9/schedule",
    "cancellationPolicy": "https://commerce.example.test/contracts/ORD7731A9/cancellation",
    "summary": "Twelve payments of 111.77 USD after a down payment of 149.03 USD."
  }
}
