def empty(count)
  count.times { }
end

def call_nothing(count)
  count.times { nothing }
end

def call_plus(count)
  count.times { plus(1000, 2000) }
end

def best(loop, count = 20_000)
  times = (1..50).map do
    start = now
    send(loop, count)
    now - start
  end
  times.min / count.to_f
end

def main
  report("empty", best(:empty))
  report("nothing", best(:call_nothing))
  report("plus", best(:call_plus))
end
